#pragma once

#include <memory>

#include "platform/drawing/Font.h"

namespace marnoth {

/// Fonts drawn by FreeType from files that fontconfig finds.
///
/// Only the face that was asked for will do, whatever a machine's settings put in its place; "Arial" is asked
/// for as "Liberation Sans", which has the same advance widths. Glyphs are antialiased, with their heights
/// fitted to whole pixels and their widths left alone; advances are the face's own, rounded to whole pixels.
/// No setting of the machine changes either.
class FreeTypeFonts final : public FontSource {
public:
    FreeTypeFonts();
    ~FreeTypeFonts() override;

    std::unique_ptr<Font> open(std::string_view face, int height, std::string& error) override;

private:
    struct Engine;
    std::shared_ptr<Engine> engine_;  ///< shared with the faces, which may live longer
};

}  // namespace marnoth
