// 64 bits: the function's entry in the table of unwinding names what is called when its frame goes. The compiler's own
// entries name the runtime of C++, which knows C++ exceptions alone; so this function is in assembler.
#include <windows.h>

#include "platform/border_frame_windows.h"

extern "C" {

// Of the frame: room for the arguments of the function called, then the border.
struct BorderFrame {
    void* room[4];
    tav::win32::Border* border;
};

void CallInBorderFrame(tav::win32::Border* border, void (*body)(void*), void* argument);

EXCEPTION_DISPOSITION BorderFrameGoes(EXCEPTION_RECORD*, void* frame, CONTEXT*, void*) {
    tav::win32::Border& border = *static_cast<BorderFrame*>(frame)->border;
    border.left(border);
    return ExceptionContinueSearch;
}

__asm__(R"(
    .text
    .p2align 4
    .globl CallInBorderFrame
    .def CallInBorderFrame; .scl 2; .type 32; .endef
    .seh_proc CallInBorderFrame
CallInBorderFrame:
    subq $40, %rsp
    .seh_stackalloc 40
    .seh_endprologue
    .seh_handler BorderFrameGoes, @unwind
    movq %rcx, 32(%rsp)
    movq %r8, %rcx
    call *%rdx
    nop
    addq $40, %rsp
    ret
    .seh_endproc
)");

}  // extern "C"

namespace tav::win32 {

void CallNoticing(Border& border) {
    CallInBorderFrame(&border, border.body, border.argument);
}

}  // namespace tav::win32
