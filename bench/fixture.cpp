#include "fixture.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "convert/check_xml.h"
#include "db/empty_database.h"
#include "load/load_from_xml.h"
#include "platform/files.h"
#include "samples/generator.h"

namespace tav::bench {
namespace fs = std::filesystem;

Folder::Folder() {
    std::string pattern = (fs::temp_directory_path() / "tav-bench-").string() + std::string(6, 'X');
    if (::mkdtemp(pattern.data()) == nullptr) std::abort();
    path_ = FromUtf8(pattern) + u"/";
}

Folder::~Folder() {
    std::error_code ignored;
    fs::remove_all(ToUtf8(path_), ignored);
}

std::string StatementOfSize(std::size_t bytes) {
    samples::StatementOptions options;
    options.rows = 1000;
    const std::size_t per_thousand = samples::MakeStatement(options).bytes.size();
    options.rows = static_cast<int>(1000 * bytes / per_thousand + 10);
    return samples::MakeStatement(options).bytes;
}

void NewDatabase(TextView path) {
    if (FileExists(path)) DeleteFile(path);
    CreateDatabase(path);
}

Text LoadManyFiles(const Folder& folder, int count) {
    samples::ManyFiles(folder / u"in/", count);
    const Text catalogue = CheckXml(folder / u"in/").catalogue;
    NewDatabase(folder / u"base.mdb");
    LoadFromXml(catalogue, folder / u"base.mdb", samples::SampleTaxpayer().inn, samples::SampleTaxpayer().kpp,
                u"");
    return catalogue;
}

}  // namespace tav::bench
