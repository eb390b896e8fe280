// Run-time failures: the one exception type of the system, with the classic message texts.
#pragma once

#include <exception>
#include <string>

#include "common/text.h"

namespace tav {

enum class RunTimeError {
    Overflow,
    OutOfMemory,
    SubscriptOutOfRange,
    TypeMismatch,
    InvalidProcedureCall,
    FileNotFound,
    DiskFull,
    PermissionDenied,
    PathFileAccess,
    PathNotFound,
    DataTypeMismatch,  // a literal that does not read as its column's type
    FileInUse,         // a database that somebody else holds; see the function of that name
    Other,             // the text alone tells
};

// The classic text of a failure: "Overflow", "Path not found", ...; empty for Other.
TextView MessageText(RunTimeError error);

// What procedures throw among themselves. No exception leaves a public procedure: see guard.h.
class Failure : public std::exception {
 public:
    // `detail` names what the failure is about (a file, a document, a column and its
    // value); it is shown after the classic text, or alone when the error has none.
    explicit Failure(RunTimeError error, TextView detail = {});
    explicit Failure(TextView text) : Failure(RunTimeError::Other, text) {}

    RunTimeError error() const { return error_; }
    const Text& detail() const { return detail_; }
    // "Path not found: /home/import".
    const Text& description() const { return description_; }
    const char* what() const noexcept override { return what_.c_str(); }

    // The same failure about one document: the description ends with " (name)".
    Failure In(TextView document) const;

 private:
    RunTimeError error_;
    Text detail_;
    Text description_;
    std::string what_;
};

// "Could not use 'path'; file already in use." Trying again later may help.
Failure FileInUse(TextView path);

// The exception being handled, as a Failure: itself, or one made of what the standard library threw.
Failure CurrentFailure();

}  // namespace tav
