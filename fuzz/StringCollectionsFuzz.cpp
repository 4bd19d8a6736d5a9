// Fuzzes CStringMap, CStringSet and CStringVector against standard-library models, driven
// by an operation byte stream over texts from a small alphabet (so that keys collide and
// case matters), copies and set algebra included.
#include "FuzzSupport.h"

#include <lumo/util/StringMap.h>
#include <lumo/util/StringSet.h>
#include <lumo/util/StringVector.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <set>

using lumo::base::CString;
using namespace lumo::util;
using namespace lumofuzz;

namespace {

// A short text over "aAbB1 "; empty now and then.
std::string Text(Input& in) {
    static char const kAlphabet[] = "aAbB1 ";
    std::size_t const n = in.Pick(4);
    std::string s;
    for (std::size_t i = 0; i < n; ++i)
        s += kAlphabet[in.Pick(6)];
    return s;
}

std::string Str(CString const& s) {
    return std::string(static_cast<char const*>(s), s.GetLength());
}

std::string Lower(std::string s) {
    for (char& c : s)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

void RunMap(Input& in) {
    bool const caseSensitive = in.Bool();
    unsigned long const capacity = in.Pick(12), increment = in.Pick(7);
    std::unique_ptr<CStringMap> map(new CStringMap(caseSensitive, capacity, increment));
    std::vector<std::pair<std::string, std::string>> model;
    auto same = [&](std::string const& a, std::string const& b) {
        return caseSensitive ? a == b : Lower(a) == Lower(b);
    };
    auto find = [&](std::string const& key) -> long {
        for (std::size_t i = 0; i < model.size(); ++i)
            if (same(model[i].first, key))
                return long(i);
        return -1;
    };
    while (!in.Empty()) {
        std::string const key = Text(in);
        switch (in.Pick(10)) {
        case 0:
        case 1: {
            bool const nullValue = in.Pick(8) == 0;
            std::string const value = nullValue ? std::string() : Text(in);
            bool const ok =
                Try([&] { map->Put(key.c_str(), nullValue ? nullptr : value.c_str()); });
            FUZZ_CHECK(ok == !key.empty());
            if (ok) {
                long const i = find(key);
                if (i >= 0)
                    model[std::size_t(i)].second = value;
                else
                    model.emplace_back(key, value);
            }
            break;
        }
        case 2: {
            long const i = find(key);
            std::string got;
            bool const ok = Try([&] { got = Str(map->Get(key.c_str())); });
            FUZZ_CHECK(ok == (i >= 0));
            FUZZ_CHECK(!ok || got == model[std::size_t(i)].second);
            // An empty key may be refused as in Put.
            long index = -1;
            FUZZ_CHECK(!Try([&] { index = map->GetIndexOfKey(key.c_str()); }) ? key.empty()
                                                                              : index == i);
            break;
        }
        case 3: {
            long expect = -1;
            for (std::size_t i = 0; i < model.size() && expect < 0; ++i)
                if (model[i].second == key)
                    expect = long(i);
            FUZZ_CHECK(map->GetIndexOf(key.c_str()) == expect);
            break;
        }
        case 4: {
            unsigned long const index = in.Pick(unsigned(model.size()) + 2);
            std::string k, v;
            bool const ok = Try([&] {
                k = Str(map->GetKeyAt(index));
                v = Str(map->GetAt(index));
            });
            FUZZ_CHECK(ok == (index < model.size()));
            FUZZ_CHECK(!ok || (k == model[index].first && v == model[index].second));
            break;
        }
        case 5: {
            Try([&] { map->Remove(key.c_str()); });
            long const i = find(key);
            if (i >= 0)
                model.erase(model.begin() + i);
            break;
        }
        case 6:
            if (in.Pick(4) == 0) {
                map->RemoveAll();
                model.clear();
            } else {
                map->EnsureCapacity(in.Pick(30));
            }
            break;
        case 7:
            map->TrimToSize();
            break;
        case 8: {
            // A copy (constructed or assigned) is equal and independent.
            std::unique_ptr<CStringMap> copy(new CStringMap(*map));
            FUZZ_CHECK(*copy == *map);
            CStringMap assigned(!caseSensitive);
            assigned = *copy;
            FUZZ_CHECK(assigned == *map);
            map = std::move(copy);
            break;
        }
        default: {
            auto keys = map->GetKeyIterator();
            auto values = map->GetValueIterator();
            std::size_t i = 0;
            for (; keys.HasMoreElements(); ++i) {
                FUZZ_CHECK(i < model.size());
                FUZZ_CHECK(Str(keys.NextElement()) == model[i].first);
                FUZZ_CHECK(values.HasMoreElements());
                FUZZ_CHECK(Str(values.NextElement()) == model[i].second);
            }
            FUZZ_CHECK(i == model.size() && !values.HasMoreElements());
            FUZZ_CHECK(!Try([&] { keys.NextElement(); }));
            break;
        }
        }
        FUZZ_CHECK(map->GetSize() == model.size());
        FUZZ_CHECK(map->GetCapacity() >= map->GetSize());
    }
}

std::set<std::string> Elements(CStringSet const& set) {
    std::set<std::string> out;
    auto e = set.GetElements();
    std::size_t n = 0;
    while (e.HasMoreElements()) {
        FUZZ_CHECK(out.insert(Str(*e.NextElement())).second);
        FUZZ_CHECK(++n <= set.GetSize());
    }
    return out;
}

void RunSet(Input& in) {
    unsigned long const capacity = in.Pick(20);
    float const loadFactor = float(int(in.Pick(12)) - 2) / 4.0f;
    CStringSet sets[2] = {CStringSet(capacity, loadFactor), CStringSet(in.Pick(20), 0.5f)};
    std::set<std::string> models[2];
    while (!in.Empty()) {
        unsigned const which = in.Pick(2);
        CStringSet& set = sets[which];
        std::set<std::string>& model = models[which];
        CStringSet& other = sets[1 - which];
        std::set<std::string> const& otherModel = models[1 - which];
        std::string const text = Text(in);
        switch (in.Pick(9)) {
        case 0:
        case 1: {
            bool const ok = Try([&] { set.Put(text.c_str()); });
            FUZZ_CHECK(ok == !text.empty());
            if (ok)
                model.insert(text);
            break;
        }
        case 2: {
            bool const ok = Try([&] { set.Remove(text.c_str()); });
            FUZZ_CHECK(ok == (model.erase(text) == 1));
            break;
        }
        case 3:
            FUZZ_CHECK(text.empty() || set.Contains(text.c_str()) == (model.count(text) == 1));
            break;
        case 4:
            set += other;
            model.insert(otherModel.begin(), otherModel.end());
            break;
        case 5:
            set -= other;
            for (auto const& s : otherModel)
                model.erase(s);
            if (&other == &set)
                model.clear();
            break;
        case 6: {
            set *= other;
            std::set<std::string> kept;
            for (auto const& s : model)
                if (otherModel.count(s))
                    kept.insert(s);
            model = kept;
            break;
        }
        case 7: {
            bool const subset =
                std::includes(otherModel.begin(), otherModel.end(), model.begin(), model.end());
            FUZZ_CHECK(set.IsSubSetOf(other) == subset);
            FUZZ_CHECK((set == other) == (model == otherModel));
            break;
        }
        default:
            if (in.Pick(4) == 0) {
                set.Empty();
                model.clear();
            } else {
                CStringSet copy(set);
                FUZZ_CHECK(copy == set);
                other = copy;
                models[1 - which] = model;
            }
            break;
        }
        FUZZ_CHECK(set.GetSize() == model.size());
        FUZZ_CHECK(Elements(set) == model);
    }
}

int CompareSlots(void const* a, void const* b) {
    return std::strcmp(*static_cast<CString const*>(a), *static_cast<CString const*>(b));
}

void RunVector(Input& in) {
    unsigned long const capacity = in.Pick(12), increment = in.Pick(6);
    std::unique_ptr<CStringVector> vector;
    bool const made = Try([&] { vector.reset(new CStringVector(capacity, increment)); });
    FUZZ_CHECK(made == (increment != 0));
    if (!made)
        return;
    std::vector<std::string> model;
    while (!in.Empty()) {
        std::string const text = Text(in);
        unsigned long const index = in.Pick(unsigned(model.size()) + 2);
        switch (in.Pick(11)) {
        case 0:
            vector->AddElement(text.c_str());
            model.push_back(text);
            break;
        case 1: {
            bool const ok = Try([&] { vector->InsertElementAt(text.c_str(), index); });
            FUZZ_CHECK(ok == (index <= model.size()));
            if (ok)
                model.insert(model.begin() + long(index), text);
            break;
        }
        case 2:
            // An index at or past the size does nothing, and throws nothing.
            vector->SetElementAt(text.c_str(), index);
            if (index < model.size())
                model[index] = text;
            break;
        case 3: {
            std::string got;
            bool const ok = Try([&] { got = Str(vector->GetElementAt(index)); });
            FUZZ_CHECK(ok == (index < model.size()));
            FUZZ_CHECK(!ok || got == model[index]);
            break;
        }
        case 4: {
            std::string first, last;
            bool const ok = Try([&] {
                first = Str(vector->GetFirstElement());
                last = Str(vector->GetLastElement());
            });
            FUZZ_CHECK(ok == !model.empty());
            FUZZ_CHECK(!ok || (first == model.front() && last == model.back()));
            break;
        }
        case 5: {
            auto const it = std::find(model.begin(), model.end(), text);
            auto const rit = std::find(model.rbegin(), model.rend(), text);
            FUZZ_CHECK(vector->GetIndexOf(text.c_str()) ==
                       (it == model.end() ? -1 : long(it - model.begin())));
            FUZZ_CHECK(vector->GetLastIndexOf(text.c_str()) ==
                       (rit == model.rend() ? -1 : long(model.rend() - rit) - 1));
            break;
        }
        case 6: {
            vector->RemoveElement(text.c_str());
            auto const it = std::find(model.begin(), model.end(), text);
            if (it != model.end())
                model.erase(it);
            break;
        }
        case 7: {
            bool const ok = Try([&] { vector->RemoveElementAt(index); });
            FUZZ_CHECK(ok == (index < model.size()));
            if (ok)
                model.erase(model.begin() + long(index));
            break;
        }
        case 8:
            if (in.Pick(3) == 0) {
                vector->RemoveAllElements();
                model.clear();
            } else if (in.Bool()) {
                vector->TrimToSize();
            } else {
                vector->EnsureCapacity(in.Pick(40));
            }
            break;
        case 9:
            vector->Sort(CompareSlots);
            std::sort(model.begin(), model.end());
            break;
        default: {
            std::unique_ptr<CStringVector> copy(new CStringVector(*vector));
            FUZZ_CHECK(*copy == *vector);
            vector = std::move(copy);
            auto e = vector->GetElements();
            std::size_t i = 0;
            for (; e.HasMoreElements(); ++i) {
                FUZZ_CHECK(i < model.size());
                FUZZ_CHECK(Str(*e.NextElement()) == model[i]);
            }
            FUZZ_CHECK(i == model.size());
            break;
        }
        }
        FUZZ_CHECK(vector->GetSize() == model.size());
        FUZZ_CHECK(vector->GetCapacity() >= vector->GetSize());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Start();
    Input in(data, size);
    switch (in.Pick(3)) {
    case 0:
        RunMap(in);
        break;
    case 1:
        RunSet(in);
        break;
    default:
        RunVector(in);
        break;
    }
    return 0;
}
