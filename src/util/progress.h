// How a long computation (a pass search, later eclipse and phenomena
// searches) tells its caller how far it has gone, and how the caller stops
// it. The computation calls the function now and then with the fraction done
// (0 to 1) and stops, keeping what it has found, when the answer is Cancel.
// The core never waits on the user itself: the window or the command line
// behind the function decides.
#pragma once

#include <functional>

namespace orv {

enum class ProgressAnswer { Continue, Cancel };
using ProgressFn = std::function<ProgressAnswer(double fractionDone)>;

}  // namespace orv
