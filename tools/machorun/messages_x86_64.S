// x86_64: Objective-C messages and thread-local variables. The Mac's functions leave more registers alone than this system's.
        .intel_syntax noprefix
        .text

// Every register that can carry an argument; the stack is aligned for a call.
.macro save_arguments
        push    rbp
        mov     rbp, rsp
        sub     rsp, 192
        mov     [rsp], rdi
        mov     [rsp+8], rsi
        mov     [rsp+16], rdx
        mov     [rsp+24], rcx
        mov     [rsp+32], r8
        mov     [rsp+40], r9
        mov     [rsp+48], rax
        mov     [rsp+56], r10
        movups  [rsp+64], xmm0
        movups  [rsp+80], xmm1
        movups  [rsp+96], xmm2
        movups  [rsp+112], xmm3
        movups  [rsp+128], xmm4
        movups  [rsp+144], xmm5
        movups  [rsp+160], xmm6
        movups  [rsp+176], xmm7
.endm
.macro restore_arguments
        mov     rdi, [rsp]
        mov     rsi, [rsp+8]
        mov     rdx, [rsp+16]
        mov     rcx, [rsp+24]
        mov     r8, [rsp+32]
        mov     r9, [rsp+40]
        mov     rax, [rsp+48]
        mov     r10, [rsp+56]
        movups  xmm0, [rsp+64]
        movups  xmm1, [rsp+80]
        movups  xmm2, [rsp+96]
        movups  xmm3, [rsp+112]
        movups  xmm4, [rsp+128]
        movups  xmm5, [rsp+144]
        movups  xmm6, [rsp+160]
        movups  xmm7, [rsp+176]
        leave
.endm

        .globl  machorun_msgSend
        .hidden machorun_msgSend
        .type   machorun_msgSend, @function
machorun_msgSend:
        .cfi_startproc
        test    rdi, rdi
        jz      1f
        save_arguments
        .cfi_def_cfa rbp, 16
        .cfi_offset rbp, -16
        call    r11                     // the call to objc_msg_lookup in the image's own code
        mov     r11, rax
        restore_arguments
        .cfi_def_cfa rsp, 8
        .cfi_restore rbp
        jmp     r11
1:      xor     eax, eax
        xor     edx, edx
        pxor    xmm0, xmm0
        pxor    xmm1, xmm1
        ret
        .cfi_endproc

        .globl  machorun_msgSend_stret
        .hidden machorun_msgSend_stret
        .type   machorun_msgSend_stret, @function
machorun_msgSend_stret:                 // rdi: where the structure goes, rsi: receiver, rdx: selector
        .cfi_startproc
        test    rsi, rsi
        jz      1f
        save_arguments
        .cfi_def_cfa rbp, 16
        .cfi_offset rbp, -16
        mov     rdi, rsi
        mov     rsi, rdx
        call    r11                     // the call to objc_msg_lookup in the image's own code
        mov     r11, rax
        restore_arguments
        .cfi_def_cfa rsp, 8
        .cfi_restore rbp
        jmp     r11
1:      mov     rax, rdi
        ret
        .cfi_endproc

        .globl  machorun_msgSend_fpret
        .hidden machorun_msgSend_fpret
        .type   machorun_msgSend_fpret, @function
machorun_msgSend_fpret:                 // a long double comes back
        .cfi_startproc
        test    rdi, rdi
        jnz     machorun_msgSend
        fldz
        ret
        .cfi_endproc

// The address of a thread-local variable: rdi is its descriptor, and only rax and rdi may change.
        .globl  machorun_thread_local_entry
        .hidden machorun_thread_local_entry
        .type   machorun_thread_local_entry, @function
machorun_thread_local_entry:
        .cfi_startproc
        save_arguments
        .cfi_def_cfa rbp, 16
        .cfi_offset rbp, -16
        push    r11
        sub     rsp, 136
        movups  [rsp], xmm8
        movups  [rsp+16], xmm9
        movups  [rsp+32], xmm10
        movups  [rsp+48], xmm11
        movups  [rsp+64], xmm12
        movups  [rsp+80], xmm13
        movups  [rsp+96], xmm14
        movups  [rsp+112], xmm15
        call    machorun_thread_local
        movups  xmm8, [rsp]
        movups  xmm9, [rsp+16]
        movups  xmm10, [rsp+32]
        movups  xmm11, [rsp+48]
        movups  xmm12, [rsp+64]
        movups  xmm13, [rsp+80]
        movups  xmm14, [rsp+96]
        movups  xmm15, [rsp+112]
        add     rsp, 136
        pop     r11
        mov     [rsp+48], rax
        restore_arguments
        .cfi_def_cfa rsp, 8
        .cfi_restore rbp
        ret
        .cfi_endproc

        .section .note.GNU-stack, "", @progbits
