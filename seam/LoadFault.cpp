#include "seam/LoadFault.h"

#include <filesystem>
#include <system_error>

#include "platform/text/Text.h"

namespace marnoth {

LoadFault whyNotOpened(const std::wstring& name, std::size_t mostCharacters) {
    if (name.size() > mostCharacters) {
        return badValue(FaultQuantity::pathCharacters, static_cast<std::int64_t>(name.size()), 1,
                        static_cast<std::int64_t>(mostCharacters));
    }
    std::error_code ignored;
    switch (std::filesystem::status(pathFromWide(name), ignored).type()) {
        case std::filesystem::file_type::not_found:
            return {.kind = FaultKind::noSuchFile};
        case std::filesystem::file_type::none:  // it can't even be asked
        case std::filesystem::file_type::regular:
            return {.kind = FaultKind::cannotOpen};
        default:
            return {.kind = FaultKind::notAFile};
    }
}

}  // namespace marnoth
