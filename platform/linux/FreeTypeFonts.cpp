#include "platform/linux/FreeTypeFonts.h"

#include <fontconfig/fontconfig.h>
// FreeType names its headers by macros of this one.
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_DRIVER_H
#include FT_MODULE_H

#include <optional>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include "platform/drawing/FaceScale.h"
#include "platform/drawing/PlatformFonts.h"

namespace marnoth {

/// FreeType's library, with its hinting fixed.
struct FreeTypeFonts::Engine {
    Engine() {
        if (FT_Init_FreeType(&library) != 0) library = nullptr;
        // Hints move points up and down only. The environment could have asked for something else.
        FT_UInt version = TT_INTERPRETER_VERSION_40;
        if (library) FT_Property_Set(library, "truetype", "interpreter-version", &version);
    }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    ~Engine() {
        if (library) FT_Done_FreeType(library);
    }

    FT_Library library = nullptr;
};

namespace {

template <auto Release>
struct Releaser {
    template <class T>
    void operator()(T* object) const {
        Release(object);
    }
};

using Config = std::unique_ptr<FcConfig, Releaser<FcConfigDestroy>>;
using Pattern = std::unique_ptr<FcPattern, Releaser<FcPatternDestroy>>;
using Face = std::unique_ptr<std::remove_pointer_t<FT_Face>, Releaser<FT_Done_Face>>;

const FcChar8* fontconfigText(const std::string& text) {
    return reinterpret_cast<const FcChar8*>(text.c_str());
}

struct FaceFile {
    std::string path;
    int index = 0;
};

/// True if `family` is among the names of the matched face.
bool isNamed(FcPattern* match, const std::string& family) {
    FcChar8* name = nullptr;
    for (int i = 0; FcPatternGetString(match, FC_FAMILY, i, &name) == FcResultMatch; ++i)
        if (FcStrCmpIgnoreCase(name, fontconfigText(family)) == 0) return true;
    return false;
}

/// Of several versions of a face the nearest to this one is taken: 1.07.4 of Liberation Sans, which
/// fonts-liberation brings. A machine may have another from fonts-liberation2, whose outlines differ a
/// little.
constexpr int kFaceVersion = 70123;

/// Where the regular face of `family` lies. No aliases: a face of another name is no answer.
std::optional<FaceFile> findFace(const std::string& family) {
    const Config config(FcInitLoadConfigAndFonts());
    if (!config) return {};
    const Pattern wanted(FcPatternCreate());
    FcPatternAddString(wanted.get(), FC_FAMILY, fontconfigText(family));
    FcPatternAddInteger(wanted.get(), FC_WEIGHT, FC_WEIGHT_REGULAR);
    FcPatternAddInteger(wanted.get(), FC_SLANT, FC_SLANT_ROMAN);
    FcPatternAddBool(wanted.get(), FC_SCALABLE, FcTrue);
    FcPatternAddInteger(wanted.get(), FC_FONTVERSION, kFaceVersion);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    const Pattern match(FcFontMatch(config.get(), wanted.get(), &result));
    FcChar8* path = nullptr;
    FaceFile file;
    if (!match || !isNamed(match.get(), family)) return {};
    if (FcPatternGetString(match.get(), FC_FILE, 0, &path) != FcResultMatch) return {};
    FcPatternGetInteger(match.get(), FC_INDEX, 0, &file.index);
    file.path = reinterpret_cast<const char*>(path);
    return file;
}

class FreeTypeFont final : public Font {
public:
    FreeTypeFont(std::shared_ptr<void> library, Face face, const FaceScale& scale)
        : library_(std::move(library)), face_(std::move(face)), scale_(scale) {}

    int lineHeight() const override { return scale_.lineHeight(); }

    const Glyph& glyph(char32_t character) override {
        const FT_UInt index = FT_Get_Char_Index(face_.get(), character);
        const auto [place, isNew] = glyphs_.try_emplace(index);
        if (isNew) place->second = draw(index);
        return place->second;
    }

private:
    Glyph draw(FT_UInt index) {
        Glyph glyph;
        if (FT_Load_Glyph(face_.get(), index, FT_LOAD_RENDER | FT_LOAD_TARGET_NORMAL) != 0) return glyph;
        const FT_GlyphSlot slot = face_->glyph;
        glyph.advance = static_cast<int>((slot->linearHoriAdvance + 0x8000) >> 16);
        glyph.left = slot->bitmap_left;
        glyph.top = scale_.ascent - slot->bitmap_top;
        const FT_Bitmap& picture = slot->bitmap;
        if (picture.pixel_mode != FT_PIXEL_MODE_GRAY || picture.pitch < 0) return glyph;
        glyph.width = static_cast<int>(picture.width);
        glyph.height = static_cast<int>(picture.rows);
        glyph.coverage.reserve(std::size_t{picture.width} * picture.rows);
        for (int y = 0; y < glyph.height; ++y) {
            const unsigned char* row = picture.buffer + std::ptrdiff_t{y} * picture.pitch;
            glyph.coverage.insert(glyph.coverage.end(), row, row + glyph.width);
        }
        return glyph;
    }

    std::shared_ptr<void> library_;  ///< outlives the face
    Face face_;
    FaceScale scale_;
    std::unordered_map<FT_UInt, Glyph> glyphs_;
};

std::string missing(const std::string& family, bool forArial) {
    std::string text = "The font \"" + family + "\" isn't installed";
    if (forArial) text += ": it has Arial's measures and comes with the package fonts-liberation";
    return text + ".";
}

}  // namespace

FreeTypeFonts::FreeTypeFonts() : engine_(std::make_shared<Engine>()) {}
FreeTypeFonts::~FreeTypeFonts() = default;

std::unique_ptr<Font> FreeTypeFonts::open(std::string_view face, int height, std::string& error) {
    if (!engine_->library) {
        error = "FreeType can't be started.";
        return nullptr;
    }
    const bool forArial = face == "Arial";
    const std::string family = forArial ? "Liberation Sans" : std::string(face);
    const std::optional<FaceFile> file = findFace(family);
    if (!file) {
        error = missing(family, forArial);
        return nullptr;
    }
    FT_Face opened = nullptr;
    if (FT_New_Face(engine_->library, file->path.c_str(), file->index, &opened) != 0 ||
        !FT_IS_SCALABLE(opened)) {
        if (opened) FT_Done_Face(opened);
        error = "The font file " + file->path + " can't be read.";
        return nullptr;
    }
    Face owned(opened);
    const FaceScale scale =
        scaleToHeight({opened->ascender, -opened->descender, opened->units_per_EM}, height);
    FT_Set_Pixel_Sizes(opened, 0, static_cast<FT_UInt>(scale.pixelsPerEm));
    return std::make_unique<FreeTypeFont>(engine_, std::move(owned), scale);
}

std::unique_ptr<FontSource> platformFonts() {
    return std::make_unique<FreeTypeFonts>();
}

}  // namespace marnoth
