#include "shells/cli/InfoJson.h"

namespace marnoth {

std::string printed(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace marnoth
