// Draws the three sample pictures: lumafold_samples FOLDER [WIDTH HEIGHT]
#include <cstdlib>
#include <iostream>
#include <string>

#include "codecs/files.h"
#include "codecs/png_writer.h"
#include "tools/samples/paint.h"

namespace {

using namespace lumafold;

bool Draw(const samples::Scene& scene, std::int32_t width, std::int32_t height, const std::string& path) {
    const OwnedDib picture = samples::Paint(scene, width, height);
    std::string error = "no memory";
    const std::vector<std::uint8_t> file =
        picture ? EncodePng(picture.Get(), error) : std::vector<std::uint8_t>();
    if (!file.empty() && WriteFileSafely(path, file, error)) return true;
    std::cerr << path << ": " << error << '\n';
    return false;
}

} // namespace

int main(int count, char** words) {
    if (count != 2 && count != 4) {
        std::cerr << "usage: lumafold_samples FOLDER [WIDTH HEIGHT]\n";
        return 2;
    }
    const std::string folder = words[1];
    const int width = count == 4 ? std::atoi(words[2]) : 480, height = count == 4 ? std::atoi(words[3]) : 320;
    const bool drawn = Draw(samples::DawnOverMountains(), width, height, folder + "/dawn.png") &&
                       Draw(samples::LanternsOnNightWater(), width, height, folder + "/lanterns.png") &&
                       Draw(samples::PaperBoats(), width, height, folder + "/boats.png");
    return drawn ? 0 : 1;
}
