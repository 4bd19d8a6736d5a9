// Fuzzes CStringTokenizer and CUnicodeStringTokenizer against a split written over
// std::basic_string: token sequence, HasMoreTokens, GetTokenCount and a change of
// delimiters on the way, with and without returnDelims.
#include "FuzzSupport.h"

#include <lumo/util/NoSuchElementException.h>
#include <lumo/util/StringTokenizer.h>
#include <lumo/util/UnicodeStringTokenizer.h>

#include <memory>
#include <string>

using namespace lumofuzz;

namespace {

// The tokenizers' contract over a text of code units.
template <class Ch> struct Split {
    using Text = std::basic_string<Ch>;
    Text source, delimiters;
    bool returnDelims;
    std::size_t pos = 0;

    bool IsDelimiter(Ch c) const { return delimiters.find(c) != Text::npos; }
    void SkipDelimiters() {
        while (pos < source.size() && IsDelimiter(source[pos]))
            ++pos;
    }
    bool HasMore() {
        if (!returnDelims)
            SkipDelimiters();
        return pos < source.size();
    }
    // False when there is no token; a returned-delimiter call gives an empty token.
    bool Next(Text& token) {
        if (!HasMore())
            return false;
        if (returnDelims) {
            ++pos;
            token.clear();
            return true;
        }
        std::size_t const start = pos;
        while (pos < source.size() && !IsDelimiter(source[pos]))
            ++pos;
        token = source.substr(start, pos - start);
        return true;
    }
    unsigned long Count() const {
        unsigned long n = 0;
        bool inToken = false;
        for (std::size_t i = pos; i < source.size(); ++i) {
            bool const d = IsDelimiter(source[i]);
            if (d && returnDelims)
                ++n;
            if (!d && !inToken)
                ++n;
            inToken = !d;
        }
        return n;
    }
};

// Text up to the first 0 unit, as the tokenizers see a terminated argument.
template <class Ch> std::basic_string<Ch> Terminated(std::basic_string<Ch> s) {
    return s.substr(0, s.find(Ch(0)));
}

template <class Ch> std::basic_string<Ch> Take(Input& in, std::size_t max);

template <> std::string Take<char>(Input& in, std::size_t max) {
    return in.Bytes(max);
}

template <> std::basic_string<unsigned short> Take<unsigned short>(Input& in, std::size_t max) {
    Units u = in.Units16(max);
    return std::basic_string<unsigned short>(u.begin(), u.end());
}

template <class Tokenizer, class Ch> void Run(Input& in) {
    using Text = std::basic_string<Ch>;
    bool const returnDelims = in.Bool();
    Text const delimiters = Take<Ch>(in, 6);
    Text const source = Take<Ch>(in, 200);
    std::string const ops = in.Rest();

    Split<Ch> model{Terminated(source), Terminated(delimiters), returnDelims};
    std::unique_ptr<Tokenizer> tokenizer;
    bool const made = Try(
        [&] { tokenizer.reset(new Tokenizer(source.c_str(), delimiters.c_str(), returnDelims)); });
    FUZZ_CHECK(made == (!model.source.empty() && !model.delimiters.empty()));
    if (!made)
        return;
    for (std::size_t i = 0; i < ops.size() && i < 300; ++i) {
        switch (std::uint8_t(ops[i]) % 4) {
        case 0:
            FUZZ_CHECK(tokenizer->HasMoreTokens() == model.HasMore());
            break;
        case 1:
            FUZZ_CHECK(tokenizer->GetTokenCount() == model.Count());
            break;
        case 2: {
            Text expect;
            bool const has = model.Next(expect);
            Text got;
            bool const ok = Try([&] {
                auto const& token = tokenizer->GetNextToken();
                got.assign(static_cast<Ch const*>(token), token.GetLength());
            });
            FUZZ_CHECK(ok == has);
            FUZZ_CHECK(!ok || got == expect);
            break;
        }
        default: {
            // New delimiters from the next few units of the source's alphabet.
            Text delims;
            std::size_t const n = 1 + std::uint8_t(ops[i]) / 4 % 3;
            for (std::size_t k = 0; k < n && !model.source.empty(); ++k)
                delims += model.source[(std::uint8_t(ops[i]) * 31 + k * 7) % model.source.size()];
            if (delims.empty() || delims.find(Ch(0)) != Text::npos)
                break;
            model.delimiters = delims;
            Text expect;
            bool const has = model.Next(expect);
            Text got;
            bool const ok = Try([&] {
                auto const& token = tokenizer->GetNextToken(delims.c_str());
                got.assign(static_cast<Ch const*>(token), token.GetLength());
            });
            FUZZ_CHECK(ok == has);
            FUZZ_CHECK(!ok || got == expect);
            break;
        }
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Start();
    Input in(data, size);
    if (in.Bool())
        Run<lumo::util::CStringTokenizer, char>(in);
    else
        Run<lumo::util::CUnicodeStringTokenizer, unsigned short>(in);
    return 0;
}
