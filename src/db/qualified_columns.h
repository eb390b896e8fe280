// SQL texts for providers that look for a name among a select's aliases first: where an alias repeats the
// name of a column that its own select uses ("max(tid) as tid"), they find the alias in its own definition
// and refuse the text as circular, or take the wrong one of two that are swapped ("h7 as h8, max(h8) as h7").
#pragma once

#include "common/text.h"

namespace tav {

// The text with the columns of such names qualified, in every select with one table in its from clause by that
// table ("select max(t.tid) as tid from t"), and in every select from another one by a name that this gets:
// "select sum(q.m1) as m1 from (select ...) as q". Any other text as it is.
Text QualifiedColumns(const Text& sql);

}  // namespace tav
