// The one positional body name of the commands about the Sun, the Moon and
// the planets ("planet", "ephemeris").
#include "cli/bodyargument.h"

#include "solarsystem/planets.h"

namespace orv::cli {

std::optional<int> BodyArgument(const Context& ctx, std::string& error)
{
    static const std::string kBodies = "Sun, Moon, Mercury, Venus, Mars, Jupiter, Saturn, Uranus, Neptune or Pluto";
    if (ctx.args.Positional().size() != 1) {
        error = "give one body: " + kBodies;
        return std::nullopt;
    }
    const std::optional<int> body = BodyFromName(ctx.args.Positional().front());
    if (!body) error = "\"" + ctx.args.Positional().front() + "\" is not " + kBodies;
    return body;
}

}  // namespace orv::cli
