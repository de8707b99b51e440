// Settings files: whatever was read is written so that it is read again.
#include <cstring>

#include "settings/config_file.h"
#include "tests/fuzz/input_file.h"
#include "tests/support/scratch_folder.h"

using namespace lumafold;
using namespace lumafold::test;

LUMAFOLD_FUZZ_TARGET(config) {
    static const ScratchFolder folder;
    static const std::string written = folder.Path("written.ini");
    PluginSettings settings, again;
    if (!LoadSettings(InputFileOf(input).Path(), settings)) return;
    Require(SaveSettings(written.c_str(), settings), "settings are written");
    Require(LoadSettings(written.c_str(), again), "they are read again");
    Require(std::memcmp(&settings, &again, sizeof(settings)) == 0, "they are the same");
}
