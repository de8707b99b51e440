// The texts that code and resource scripts share. Numbers are those of the string table.
#pragma once

#define LUMAFOLD_STRING_READ_ERROR 3
#define LUMAFOLD_TEXT_READ_ERROR "Error reading file"
#define LUMAFOLD_STRING_MEMORY_ERROR 6
#define LUMAFOLD_TEXT_MEMORY_ERROR "Memory error"

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
