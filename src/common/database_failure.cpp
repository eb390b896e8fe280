#include "common/database_failure.h"

#include <algorithm>
#include <array>

namespace tav {

bool ConcernsDatabase() {
    constexpr std::array kOfOneStatement = {
        RunTimeError::Overflow,         RunTimeError::SubscriptOutOfRange,
        RunTimeError::TypeMismatch,     RunTimeError::InvalidProcedureCall,
        RunTimeError::DataTypeMismatch, RunTimeError::Other};
    try {
        throw;
    } catch (const DatabaseFailure&) {
        return true;
    } catch (...) {
        return std::ranges::find(kOfOneStatement, CurrentFailure().error()) == kOfOneStatement.end();
    }
}

}  // namespace tav
