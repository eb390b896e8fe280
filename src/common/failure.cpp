#include "common/failure.h"

#include <array>
#include <new>
#include <utility>

#include "common/concat.h"

namespace tav {
namespace {

constexpr std::array<std::pair<RunTimeError, TextView>, 13> kMessages = {{
    {RunTimeError::Overflow, u"Overflow"},
    {RunTimeError::OutOfMemory, u"Out of memory"},
    {RunTimeError::SubscriptOutOfRange, u"Subscript out of range"},
    {RunTimeError::TypeMismatch, u"Type mismatch"},
    {RunTimeError::InvalidProcedureCall, u"Invalid procedure call or argument"},
    {RunTimeError::FileNotFound, u"File not found"},
    {RunTimeError::DiskFull, u"Disk full"},
    {RunTimeError::PermissionDenied, u"Permission denied"},
    {RunTimeError::PathFileAccess, u"Path/File access error"},
    {RunTimeError::PathNotFound, u"Path not found"},
    {RunTimeError::DataTypeMismatch, u"Data type mismatch in criteria expression."},
    {RunTimeError::FileInUse, u""},  // its detail is the whole sentence
    {RunTimeError::Other, u""},
}};

Text Describe(RunTimeError error, TextView detail) {
    const TextView text = MessageText(error);
    if (text.empty() || detail.empty()) return Concat(text, detail);
    return Concat(text, text.back() == u'.' ? u" " : u": ", detail);
}

}  // namespace

TextView MessageText(RunTimeError error) {
    for (const auto& [known, text] : kMessages) {
        if (known == error) return text;
    }
    return {};
}

Failure::Failure(RunTimeError error, TextView detail)
    : error_(error), detail_(detail), description_(Describe(error, detail)), what_(ToUtf8(description_)) {}

Failure Failure::In(TextView document) const {
    Failure named = *this;
    named.description_ += Concat(u" (", document, u")");
    named.what_ = ToUtf8(named.description_);
    return named;
}

Failure FileInUse(TextView path) {
    return Failure(RunTimeError::FileInUse, Concat(u"Could not use '", path, u"'; file already in use."));
}

Failure CurrentFailure() {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure;
    } catch (const std::bad_alloc&) {
        return Failure(RunTimeError::OutOfMemory);
    } catch (const std::exception& other) {
        return Failure(FromUtf8(other.what()));
    } catch (...) {  // of another language
        return Failure(u"Application-defined or object-defined error");
    }
}

}  // namespace tav
