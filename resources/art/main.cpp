// Draws bitmaps, cursor and icons: lumafold_art FOLDER
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

#include "resources/art/art.h"
#include "resources/art/files.h"
#include "resources/texts/resource_ids.h"
#include "resources/texts/toolbar_icons.h"

namespace {

using namespace lumafold::art;

bool Write(const std::string& path, const Bytes& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) std::cerr << path << ": cannot be written\n";
    return static_cast<bool>(file);
}

bool WriteLogo(const std::string& folder) {
    for (int frame = 0; frame < LUMAFOLD_LOGO_FRAMES; ++frame) {
        char name[32];
        std::snprintf(name, sizeof name, "/logo_%02d.bmp", frame);
        const double turn = static_cast<double>(frame) / LUMAFOLD_LOGO_FRAMES;
        if (!Write(folder + name, TrueColourBitmap(LogoFrame(turn)))) return false;
    }
    return true;
}

bool WriteToolbar(const std::string& folder) {
    for (const int size : {LUMAFOLD_ICON_SIZES}) {
        const std::string start = folder + "/toolbar_" + std::to_string(size);
        if (!Write(start + ".bmp", CoverBitmap(ToolbarIcons(size, IconState::Usable))) ||
            !Write(start + "_faded.bmp", CoverBitmap(ToolbarIcons(size, IconState::Faded))))
            return false;
    }
    return true;
}

} // namespace

int main(int count, char** words) {
    if (count != 2) {
        std::cerr << "usage: lumafold_art FOLDER\n";
        return 2;
    }
    const std::string folder = words[1];
    const Surface icon[] = {LogoIcon(16), LogoIcon(20), LogoIcon(24), LogoIcon(32),
                            LogoIcon(40), LogoIcon(48), LogoIcon(72)};
    const bool drawn = WriteLogo(folder) && WriteToolbar(folder) &&
                       Write(folder + "/texture.bmp", GreyBitmap(kTextureWidth, kTextureHeight, Texture())) &&
                       Write(folder + "/drag.cur", Cursor(DragCursor(), kCursorHotX, kCursorHotY)) &&
                       Write(folder + "/lumafold.ico", Icon(icon));
    return drawn ? 0 : 1;
}
