// The numbers and angles users type: the command line's angle, date and
// time options, the settings store's real values and the angle parser of
// every dialog.
#include <cstddef>
#include <cstdint>
#include <cmath>
#include <string>

#include "cli/options.h"
#include "observer/observer.h"
#include "util/angles.h"
#include "util/settingsstore.h"
#include "fuzzsupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace orv;
    const std::string text(fuzz::Text({data, size}));
    double angle = 0.0;
    ParseAngle(text, AngleUnit::Degrees, angle);
    ParseAngle(text, AngleUnit::Hours, angle);
    std::string error;
    if (cli::ParseRightAscensionOption("--ra", text, angle, error) && !(angle >= 0.0 && angle < 6.2831853071795873))
        __builtin_trap();
    if (cli::ParseDegreesOption("--dec", text, 90.0, angle, error) && !(std::abs(angle) <= 1.5707963267948968))
        __builtin_trap();
    CivilDateTime when{};
    cli::ParseDate(text, when);
    cli::ParseTimeOfDay(text, when);
    ParseRealSetting(text);
    return 0;
}
