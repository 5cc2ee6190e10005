#pragma once

#include <memory>

#include "platform/drawing/Font.h"

namespace marnoth {

/// Fonts drawn by the system's graphics interface, antialiased. Only the face that was asked for will do;
/// a system without "Arial" may have "Liberation Sans" in its place, whose advances are the same. Advances
/// are the face's own, rounded to whole pixels, so that texts are as wide here as elsewhere. Characters above
/// U+FFFF give the box.
class GdiFonts final : public FontSource {
public:
    std::unique_ptr<Font> open(std::string_view face, int height, std::string& error) override;
};

}  // namespace marnoth
