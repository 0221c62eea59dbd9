// Where the builder's steps send their progress and report lines (the command
// line prints them with the elapsed time; the tests collect or drop them).
#pragma once

#include <functional>
#include <string>

namespace orv::databuild {

using Progress = std::function<void(const std::string&)>;

}  // namespace orv::databuild
