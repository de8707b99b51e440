// The texts that code and resource scripts share. Numbers are those of the string table.
#pragma once

#define LUMAFOLD_STRING_READ_ERROR 3
#define LUMAFOLD_TEXT_READ_ERROR "Error reading file"
#define LUMAFOLD_STRING_MEMORY_ERROR 6
#define LUMAFOLD_TEXT_MEMORY_ERROR "Memory error"

// The fixed palettes: their names in order, from this number on.
#define LUMAFOLD_STRING_PALETTE 1600
#define LUMAFOLD_PALETTE_0 "Black and white"
#define LUMAFOLD_PALETTE_1 "Sixteen-color Windows"
#define LUMAFOLD_PALETTE_2 "32-color orthogonal"
#define LUMAFOLD_PALETTE_3 "64-color orthogonal"
#define LUMAFOLD_PALETTE_4 "128-color orthogonal"
#define LUMAFOLD_PALETTE_5 "216-color safe"
#define LUMAFOLD_PALETTE_6 "256-color orthogonal"
#define LUMAFOLD_PALETTE_7 "256-color with gray"
#define LUMAFOLD_PALETTE_8 "256 gray levels"
#define LUMAFOLD_PALETTES                                                                                    \
    LUMAFOLD_PALETTE_0 ";" LUMAFOLD_PALETTE_1 ";" LUMAFOLD_PALETTE_2 ";" LUMAFOLD_PALETTE_3                  \
                       ";" LUMAFOLD_PALETTE_4 ";" LUMAFOLD_PALETTE_5 ";" LUMAFOLD_PALETTE_6                  \
                       ";" LUMAFOLD_PALETTE_7 ";" LUMAFOLD_PALETTE_8

#define LUMAFOLD_TEXT_TASK_ERROR "Error creating new task."
#define LUMAFOLD_TEXT_FRAME_ERROR "There has been an error adding an image to the current file object."

#define LUMAFOLD_CAPTION_CALCULATING "Calculating"
#define LUMAFOLD_CAPTION_ADJUSTING "Adjusting"
#define LUMAFOLD_CAPTION_BUILDING "Building"
#define LUMAFOLD_CAPTION_QUANTIZING "Quantizing"
#define LUMAFOLD_CAPTION_SUPERCOMPRESSING "Supercompressing"
#define LUMAFOLD_CAPTION_REMAPPING "Remapping"

#define LUMAFOLD_LABEL_TEMPORARY "TEMP"

#define LUMAFOLD_TEXT_INTERNAL_ERROR "Internal error"
#define LUMAFOLD_TEXT_CLIPBOARD_ERROR "Clipboard error"
#define LUMAFOLD_TEXT_HELP_ERROR "There has been an error displaying the Help document."

#define LUMAFOLD_LABEL_CLIPBOARD "Clipboard image"
#define LUMAFOLD_MANUAL "LUMAFOLD.HTML"
