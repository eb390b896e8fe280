#include "jet/file/spill_file.h"

namespace tav::jet {
SpillFile::Place SpillFile::Put(const Page& bytes) {
    if (!file_) file_.emplace(LockedFile::Temporary(database_path_));
    PutAgain(used_, bytes);
    return used_++;
}

void SpillFile::PutAgain(Place place, const Page& bytes) {
    file_->WriteAt(Offset(place), bytes.data(), kPageSize);
}

void SpillFile::Get(Place place, Page& bytes) const {
    file_->ReadAt(Offset(place), bytes.data(), kPageSize);
}

void SpillFile::Clear() {
    file_.reset();
    used_ = 0;
}

}  // namespace tav::jet
