// A folder of N small documents: the scan, the load, and both again when nothing changed.

#include <benchmark/benchmark.h>

#include "convert/check_xml.h"
#include "fixture.h"
#include "load/constr_tab_type_oper.h"
#include "load/load_from_xml.h"
#include "platform/files.h"
#include "samples/generator.h"

namespace tav {
namespace {

void Load(const bench::Folder& folder, TextView catalogue) {
    LoadFromXml(catalogue, folder / u"base.mdb", samples::SampleTaxpayer().inn, samples::SampleTaxpayer().kpp,
                u"");
    ConstrTabTypeOper(folder / u"base.mdb");
}

// Numbers of files, each twice the one before.
void Sizes(benchmark::internal::Benchmark* benchmark) {
    for (int files = 1000; files <= 16000; files *= 2) benchmark->Arg(files);
}

void Scan(benchmark::State& state) {
    const bench::Folder folder;
    samples::ManyFiles(folder / u"in/", static_cast<int>(state.range(0)));
    for (auto _ : state) {
        CheckXml(folder / u"in/");
        state.PauseTiming();
        DeleteFile(folder / u"in/listfiles.xml");
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(Scan)->Apply(Sizes)->Unit(benchmark::kMillisecond)->Complexity();

void LoadCatalogue(benchmark::State& state) {
    const bench::Folder folder;
    samples::ManyFiles(folder / u"in/", static_cast<int>(state.range(0)));
    const Text catalogue = CheckXml(folder / u"in/").catalogue;
    for (auto _ : state) {
        state.PauseTiming();
        bench::NewDatabase(folder / u"base.mdb");
        state.ResumeTiming();
        Load(folder, catalogue);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(LoadCatalogue)->Apply(Sizes)->Unit(benchmark::kMillisecond)->Complexity();

void SecondImport(benchmark::State& state) {
    const bench::Folder folder;
    bench::LoadManyFiles(folder, static_cast<int>(state.range(0)));
    ConstrTabTypeOper(folder / u"base.mdb");
    for (auto _ : state) Load(folder, CheckXml(folder / u"in/").catalogue);
}
BENCHMARK(SecondImport)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);

// The rows of N documents, none of which has a type yet.
void AssignTypes(benchmark::State& state) {
    const bench::Folder folder;
    bench::LoadManyFiles(folder, static_cast<int>(state.range(0)));
    const std::string untyped = ReadFile(folder / u"base.mdb");
    for (auto _ : state) {
        state.PauseTiming();
        WriteFileWhole(folder / u"base.mdb", untyped);
        state.ResumeTiming();
        ConstrTabTypeOper(folder / u"base.mdb");
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(AssignTypes)->Apply(Sizes)->Unit(benchmark::kMillisecond)->Complexity();

}  // namespace
}  // namespace tav
