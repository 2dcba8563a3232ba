// arm64: Objective-C messages, thread-local variables, and functions with variable arguments.
        .text

.macro save_arguments
        stp     x29, x30, [sp, #-240]!
        mov     x29, sp
        stp     x0, x1, [sp, #16]
        stp     x2, x3, [sp, #32]
        stp     x4, x5, [sp, #48]
        stp     x6, x7, [sp, #64]
        str     x8, [sp, #80]
        stp     q0, q1, [sp, #96]
        stp     q2, q3, [sp, #128]
        stp     q4, q5, [sp, #160]
        stp     q6, q7, [sp, #192]
.endm
.macro restore_arguments
        ldp     x0, x1, [sp, #16]
        ldp     x2, x3, [sp, #32]
        ldp     x4, x5, [sp, #48]
        ldp     x6, x7, [sp, #64]
        ldr     x8, [sp, #80]
        ldp     q0, q1, [sp, #96]
        ldp     q2, q3, [sp, #128]
        ldp     q4, q5, [sp, #160]
        ldp     q6, q7, [sp, #192]
        ldp     x29, x30, [sp], #240
.endm

        .globl  machorun_msgSend
        .hidden machorun_msgSend
        .type   machorun_msgSend, %function
machorun_msgSend:                       // x17: the call to objc_msg_lookup in the image's own code
        .cfi_startproc
        cbz     x0, 1f
        save_arguments
        .cfi_def_cfa x29, 240
        .cfi_offset x29, -240
        .cfi_offset x30, -232
        blr     x17
        str     x0, [sp, #88]
        ldp     x0, x1, [sp, #16]
        bl      machorun_returns_boolean
        mov     x17, x0
        ldr     x16, [sp, #88]
        restore_arguments
        .cfi_def_cfa sp, 0
        .cfi_restore x29
        .cfi_restore x30
        cbnz    x17, 2f
        br      x16
2:      stp     x29, x30, [sp, #-16]!   // such a message has no arguments on the stack
        .cfi_def_cfa_offset 16
        .cfi_offset x29, -16
        .cfi_offset x30, -8
        mov     x29, sp
        blr     x16
        and     w0, w0, #0xFF
        ldp     x29, x30, [sp], #16
        .cfi_def_cfa_offset 0
        .cfi_restore x29
        .cfi_restore x30
        ret
1:      mov     x1, #0
        movi    d0, #0
        movi    d1, #0
        movi    d2, #0
        movi    d3, #0
        ret
        .cfi_endproc

        .globl  machorun_msgSend_stret
        .hidden machorun_msgSend_stret
        .globl  machorun_msgSend_fpret
        .hidden machorun_msgSend_fpret
machorun_msgSend_stret:                 // not on this processor
machorun_msgSend_fpret:
        brk     #1

        .globl  machorun_thread_local_entry
        .hidden machorun_thread_local_entry
        .type   machorun_thread_local_entry, %function
machorun_thread_local_entry:                           // keeps all registers but x0, x16, x17 and the vector registers above q7
        .cfi_startproc
        save_arguments
        .cfi_def_cfa x29, 240
        .cfi_offset x29, -240
        .cfi_offset x30, -232
        stp     x9, x10, [sp, #-64]!
        stp     x11, x12, [sp, #16]
        stp     x13, x14, [sp, #32]
        str     x15, [sp, #48]
        bl      machorun_thread_local
        ldp     x11, x12, [sp, #16]
        ldp     x13, x14, [sp, #32]
        ldr     x15, [sp, #48]
        ldp     x9, x10, [sp], #64
        str     x0, [sp, #16]
        restore_arguments
        .cfi_def_cfa sp, 0
        .cfi_restore x29
        .cfi_restore x30
        ret
        .cfi_endproc

// int snprintf(char*, size_t, const char*, ...): the Mac's variable arguments are all on the stack.
        .globl  machorun_snprintf
        .hidden machorun_snprintf
        .type   machorun_snprintf, %function
machorun_snprintf:
        mov     x3, sp
        b       machorun_snprintf_list
        .globl  machorun_printf
        .hidden machorun_printf
machorun_printf:
        mov     x1, sp
        b       machorun_printf_list

        .section .note.GNU-stack, "", %progbits
