// Class lookup by name and instance creation through records, against the map and
// the plain `new` a user would otherwise write.
#include <lumo/base/ClassManager.h>
#include <lumo/base/Object.h>

#include <benchmark/benchmark.h>

#include <string>
#include <unordered_map>

using namespace lumo::base;

namespace bench {
class CPoint : public CObject {
    LUMO_DECLARE_CLASS(CPoint);
    static CObject* Make() { return new CPoint; }
    int x = 0, y = 0;
};
LUMO_DEFINE_CLASS_EX(CPoint, "bench::CPoint", "lumo::base::CObject", nullptr, nullptr,
                     &CPoint::Make);
} // namespace bench

static void FindClass_Lumo(benchmark::State& state) {
    std::string const name = "lumo::base::CObject";
    for (auto _ : state)
        benchmark::DoNotOptimize(CClass::FindClass(name.c_str()));
}
BENCHMARK(FindClass_Lumo);

static void FindClass_UnorderedMap(benchmark::State& state) {
    std::unordered_map<std::string, CClass const*> map;
    map.emplace("lumo::base::CObject", &CObject::m_classCObject);
    map.emplace("bench::CPoint", &bench::CPoint::m_classCPoint);
    std::string const name = "lumo::base::CObject";
    for (auto _ : state)
        benchmark::DoNotOptimize(map.find(name.c_str()));
}
BENCHMARK(FindClass_UnorderedMap);

static void CreateInstance_Lumo(benchmark::State& state) {
    for (auto _ : state) {
        CObject* o = bench::CPoint::m_classCPoint.CreateNewInstance();
        benchmark::DoNotOptimize(o);
        delete o;
    }
}
BENCHMARK(CreateInstance_Lumo);

static void CreateInstance_New(benchmark::State& state) {
    for (auto _ : state) {
        CObject* o = new bench::CPoint;
        benchmark::DoNotOptimize(o);
        delete o;
    }
}
BENCHMARK(CreateInstance_New);
