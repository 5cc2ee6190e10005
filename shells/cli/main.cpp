#include <iostream>

#include "platform/files/Leftover.h"
#include "shells/cli/CommandLine.h"
#include "shells/cli/Console.h"

int main(int argc, char** argv) {
    marnoth::prepareConsole();
    marnoth::removeLeftoversOnSignals();
    return marnoth::runCommandLine(marnoth::consoleArguments(argc, argv), std::cout, std::cerr);
}
