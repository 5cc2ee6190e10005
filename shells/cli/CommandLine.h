#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "shells/cli/DevicesCommand.h"
#include "shells/cli/PlayCommand.h"

namespace marnoth {

/// The program `marnoth`, with its arguments in UTF-8 and without its name. Gives the exit status: 0; 2 for a
/// use that isn't understood, with one line on `errors` that says what to do; 1 for a file that fails, with
/// the reason. Without arguments it plays, where there is a `play` to do that; what sound can go through
/// `list` tells.
int runCommandLine(std::vector<std::string> arguments, std::ostream& out, std::ostream& errors,
                   const PlayCommand& play = {}, const ListSound& list = {});

}  // namespace marnoth
