// Where a person's own files are kept: the settings file and the image list.
#pragma once

namespace lumafold {

/// `fileName` in the application-data folder's "Brackenfield"; on Windows the shell's roaming one, elsewhere
/// $XDG_CONFIG_HOME, when that is an absolute path, or ~/.config. Where the system knows none, the sub-folder
/// alone, relative to the current folder. The text is in a static buffer, which the next call of the same
/// function overwrites; "" when it would be too long. Makes no folder.
const char* DataFolderPath(const char* fileName);

/// `fileName` in the folder "Lumafold" inside that; where the system knows none, in "Lumafold" alone.
const char* ListFolderPath(const char* fileName);

} // namespace lumafold
