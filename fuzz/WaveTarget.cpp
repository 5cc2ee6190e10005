#include <cstddef>
#include <cstdint>

#include "fuzz/Exercise.h"
#include "fuzz/MemoryFile.h"

/// The wave reader and the whole way of a file into the Loop Bin and onto a pad.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace marnoth;
    using namespace marnoth::fuzz;
    static MemoryFile file;
    file.fill({data, size});

    constexpr std::uint32_t kRates[]{8000, 11025, 22050, 48000};
    const std::uint8_t choice = choices(data, size);
    test::EngineHost host(kRates[choice & 3], choice & 4 ? 1 : 2);
    host.engine.SetLenientFiles(choice & 8);
    std::int32_t bin = -1;
    std::uint32_t status = 0;
    const HRESULT result = host.engine.LoadFileToPad(0, "file", file.name(), &bin, &status);
    std::int32_t files = -1;
    host.engine.GetBinFileCount(&files);
    require(files == (SUCCEEDED(result) ? 1 : 0), "a file is in the bin when it was loaded, and only then");
    readLists(host.engine);
    if (SUCCEEDED(result)) playEverything(host);
    host.engine.RemoveBinFile(0);
    readLists(host.engine);
    return 0;
}
