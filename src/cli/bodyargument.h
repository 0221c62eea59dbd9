#pragma once

#include <optional>
#include <string>

#include "cli/cli.h"

namespace orv::cli {

// The body named by the command's one positional word (any case); nothing,
// with the usage message in `error`, when there is not exactly one word or
// it names no body.
std::optional<int> BodyArgument(const Context& ctx, std::string& error);

}  // namespace orv::cli
