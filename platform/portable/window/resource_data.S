/* The files of resources/, each between two labels. */
        .macro resource name, file
        .global Resource_\name, Resource_\name\()_End
        .hidden Resource_\name, Resource_\name\()_End
        .balign 4
Resource_\name:
        .incbin "\file"
Resource_\name\()_End:
        .endm

        .section .rodata
        resource md1, "resources/md1.bmp"
        resource record, "resources/record.bmp"
        resource stop, "resources/stop.bmp"
        resource close, "resources/close.bmp"
        resource hand, "resources/hand.cur"
        resource hand_busy, "resources/hand_busy.cur"
        .section .note.GNU-stack, "", %progbits
