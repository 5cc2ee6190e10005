#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "shells/cli/Completions.h"
#include "shells/cli/ManualPage.h"

/// Writes what is installed beside the program into a folder: `marnoth_documents DIR`.
int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: marnoth_documents DIR\n";
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    const marnoth::ProgramText text = marnoth::describeCommandLine();
    const auto write = [&](const char* name, const std::string& document) {
        return (std::ofstream(folder / name, std::ios::binary) << document).flush().good();
    };
    const bool written = write("marnoth.1", marnoth::manualPage(text)) &&
                         write("marnoth", marnoth::bashCompletion(text)) &&
                         write("_marnoth", marnoth::zshCompletion(text)) &&
                         write("marnoth.fish", marnoth::fishCompletion(text));
    if (!written) std::cerr << "marnoth_documents: writing failed\n";
    return written ? 0 : 1;
}
