# What lumafold_art draws. The Windows build takes these files from the native one.
set(LUMAFOLD_ART_FILES texture.bmp drag.cur lumafold.ico)
foreach(frame RANGE 23)
    if(frame LESS 10)
        set(frame 0${frame})
    endif()
    list(APPEND LUMAFOLD_ART_FILES logo_${frame}.bmp)
endforeach()
foreach(size 24 30 36 48) # those of resources/texts/toolbar_icons.h
    list(APPEND LUMAFOLD_ART_FILES toolbar_${size}.bmp toolbar_${size}_faded.bmp)
endforeach()
