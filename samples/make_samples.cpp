// make_samples: writes sample documents for trying things out and for measuring.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>

#include "samples/generator.h"

namespace {

using tav::FromUtf8;
using tav::Text;
using namespace tav::samples;

void WriteTo(const std::string& file, const Document& document) {
    const std::filesystem::path path(file);
    WriteDocument(FromUtf8(path.has_parent_path() ? path.parent_path().string() : "."), document);
    std::printf("%s: %zu bytes\n", file.c_str(), document.bytes.size());
}

constexpr int kMost = 1'000'000;  // what fits into memory with ease

Text NameIn(const std::string& file) {
    return FromUtf8(std::filesystem::path(file).filename().string());
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Makes sample documents of the tax service: invented taxpayers, invented amounts."};
    app.require_subcommand(1);
    std::string target;
    StatementOptions statement;
    ActOptions act;
    int files = 1000;
    int rows = 3;
    std::uint64_t seed = 1;
    bool xml = false;

    auto* folder = app.add_subcommand("folder", "The standard set: documents of every kind");
    folder->add_option("DIR", target, "Folder, made when missing")->required();
    folder->callback([&] {
        for (const Document& document : SampleFolder(FromUtf8(target)))
            std::printf("%s\n", tav::ToUtf8(document.name).c_str());
    });

    auto* one = app.add_subcommand("statement", "One statement of any length");
    one->add_option("FILE", target, "RTF file to write")->required();
    one->add_option("--rows", statement.rows, "Operations")
        ->capture_default_str()
        ->check(CLI::Range(0, kMost));
    one->add_option("--layout", statement.layout, "Version of the form")
        ->capture_default_str()
        ->check(CLI::Range(1, 2));
    one->add_option("--seed", statement.seed, "Another seed, other amounts")->capture_default_str();
    one->callback([&] {
        statement.name = NameIn(target);
        WriteTo(target, MakeStatement(statement));
    });

    auto* many = app.add_subcommand("many", "A folder of many small statements");
    many->add_option("DIR", target, "Folder, made when missing")->required();
    many->add_option("--files", files, "How many")->capture_default_str()->check(CLI::Range(0, kMost));
    many->add_option("--rows", rows, "Operations of each")
        ->capture_default_str()
        ->check(CLI::Range(0, kMost));
    many->add_option("--seed", seed, "Another seed, other amounts")->capture_default_str();
    many->callback([&] { ManyFiles(FromUtf8(target), files, rows, seed); });

    auto* one_act = app.add_subcommand("act", "One act of reconciliation");
    one_act->add_option("FILE", target, "File to write")->required();
    one_act->add_flag("--xml", xml, "In the exchange format instead of RTF");
    one_act->add_option("--seed", act.seed, "Another seed, other amounts")->capture_default_str();
    one_act->callback([&] {
        act.name = NameIn(target);
        WriteTo(target, xml ? MakeActXml(act) : MakeActRtf(act));
    });

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_samples: %s\n", error.what());
        return 1;
    }
}
