#include "convert/folder_glance.h"

#include <utility>

#include "common/progress.h"
#include "convert/document_glance.h"
#include "convert/folder_state.h"
#include "platform/files.h"

namespace tav {
namespace {

ScannedFile Glance(TextView folder, const ListedDocument& document) {
    if (document.settled) return SettledFile(document);
    using State = ScannedFile::State;
    ScannedFile file{.name = document.name, .state = document.listed_before ? State::Again : State::New};
    DocumentGlance glance = GlanceAtDocument(Text(folder).append(document.name));
    if (glance.kind != DocumentKind::Unknown) return file;
    if (glance.unreadable) file.state = State::Unreadable;
    file.found = ScannedFile::Found::Nothing;
    file.reason = std::move(glance.reason);
    return file;
}

}  // namespace

ScanAccount GlanceAtFolder(TextView folder, std::optional<bool> acts_as_xml) {
    ScanAccount account;
    const Text path = WithSeparator(folder);
    FolderState state = ReadFolderState(path, acts_as_xml);
    account.unnamable = std::move(state.unnamable);
    account.unlisted_acts = CountUnlistedActs(path, state);
    account.files.reserve(state.documents.size());
    for (const ListedDocument& document : state.documents) {
        CurrentProgress().ProcessEvents();
        account.files.push_back(Glance(path, document));
    }
    account.read = std::move(state.catalogue);
    if (!account.files.empty()) account.catalogue = path + Text(kCatalogueName);
    return account;
}

}  // namespace tav
