/// The benchmarks of the registered component: a program for Windows, and by itself, since the library of the
/// others isn't there.
///
///     marnoth_graph_bench [--benchmark_filter=REGEX] [--benchmark_list_tests]

#include "bench/ComponentBench.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <regex>
#include <stdexcept>
#include <string>
#include <string_view>

#include "bench/Check.h"
#include "shellkit/component/ComApartment.h"

namespace marnoth::bench {
namespace {

/// The component in the registry for as long as this lives.
class InRegistry {
public:
    InRegistry() : module_(LoadLibraryA(MARNOTH_COMPONENT)) {
        if (!module_) throw std::runtime_error("there is no " MARNOTH_COMPONENT);
        check(call("DllRegisterServer"), "DllRegisterServer");
    }
    ~InRegistry() {
        call("DllUnregisterServer");
        FreeLibrary(module_);
    }
    InRegistry(const InRegistry&) = delete;
    InRegistry& operator=(const InRegistry&) = delete;

private:
    HRESULT call(const char* name) {
        auto* const found = reinterpret_cast<void*>(GetProcAddress(module_, name));
        return found ? reinterpret_cast<HRESULT (*)()>(found)() : E_NOTIMPL;
    }

    HMODULE module_;
};

struct Bench {
    const char* name;
    void (*run)();
};

constexpr Bench kAll[]{{"Graph/block", benchBlock},
                       {"Graph/page_call", benchPageCall},
                       {"Graph/answers", benchAnswers},
                       {"Graph/create", benchCreate},
                       {"Graph/page", benchPage}};

/// What stands behind `option=` among the words; empty without it.
std::string valueOf(std::string_view option, int count, char** words) {
    for (int i = 1; i < count; ++i)
        if (std::string_view word = words[i]; word.starts_with(option))
            return std::string(word.substr(option.size()));
    return {};
}

}  // namespace
}  // namespace marnoth::bench

int main(int argc, char** argv) try {
    using namespace marnoth::bench;
    const std::regex filter(valueOf("--benchmark_filter=", argc, argv));
    const bool isListed = std::any_of(argv + 1, argv + argc, [](std::string_view word) {
        return word.starts_with("--benchmark_list_tests");
    });
    const marnoth::ComApartment apartment(COINIT_MULTITHREADED);
    std::unique_ptr<InRegistry> registered;
    for (const Bench& bench : kAll) {
        if (!std::regex_search(bench.name, filter)) continue;
        std::printf("%s\n", bench.name);
        if (isListed) continue;
        if (!registered) registered = std::make_unique<InRegistry>();
        bench.run();
    }
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
