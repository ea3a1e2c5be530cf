/* The files of resources/ as they are, between two labels each. */
        .section .rodata
        .global Resource_111
        .hidden Resource_111
        .global Resource_111_End
        .hidden Resource_111_End
        .balign 4
Resource_111:
        .incbin "resources/md1.bmp"
Resource_111_End:
        .section .note.GNU-stack, "", %progbits
