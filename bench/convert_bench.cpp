// Reading one large statement: the page converter compared
// with a plain read of the file, and the whole reader.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

#include "convert/load_rtf_file.h"
#include "convert/page_reader.h"
#include "fixture.h"
#include "platform/files.h"
#include "platform/input_file.h"

namespace tav {
namespace {

constexpr std::size_t kMegabytes = 20;

// The statement on disk.
struct Statement {
    bench::Folder folder;
    Text path = folder / u"statement.rtf";
    std::int64_t size = 0;

    Statement() {
        const std::string bytes = bench::StatementOfSize(kMegabytes << 20);
        size = static_cast<std::int64_t>(bytes.size());
        WriteFileWhole(path, bytes);
    }
};

void PlainRead(benchmark::State& state) {
    const Statement statement;
    for (auto _ : state) benchmark::DoNotOptimize(ReadFile(statement.path));
    state.SetBytesProcessed(state.iterations() * statement.size);
}
BENCHMARK(PlainRead)->Unit(benchmark::kMillisecond);

void PageConversion(benchmark::State& state) {
    const Statement statement;
    for (auto _ : state) {
        std::size_t characters = 0;
        InputFile file(statement.path);
        PageReader reader;
        for (reader.Open(file); reader.More();) characters += reader.Next().size();
        if (characters == 0) std::abort();
    }
    state.SetBytesProcessed(state.iterations() * statement.size);
}
BENCHMARK(PageConversion)->Unit(benchmark::kMillisecond);

void WholeReader(benchmark::State& state) {
    const Statement statement;
    for (auto _ : state) {
        if (LoadRtfFile(statement.folder.path(), u"statement.rtf").entry.empty()) std::abort();
    }
    state.SetBytesProcessed(state.iterations() * statement.size);
}
BENCHMARK(WholeReader)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tav
