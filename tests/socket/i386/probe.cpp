#include "socket/i386/probe.h"

#include <cstddef>

namespace zev::socket_bench {

// The offsets below are those of these members.
static_assert(offsetof(Probe, arguments) == 4);
static_assert(offsetof(Probe, stackShift) == 20);
static_assert(offsetof(Probe, before) == 24);
static_assert(offsetof(Probe, result) == 48);
static_assert(offsetof(Probe, after) == 52);
static_assert(offsetof(Probe, stackExpected) == 76);
static_assert(offsetof(Probe, stackFound) == 80);
static_assert(offsetof(Probe, flags) == 84);
static_assert(sizeof(Found) == 15 * 4);

}  // namespace zev::socket_bench

// Between the stack that is to be gone back to and the one that the procedure gets lies a gap, so
// that one that takes too much off the stack spoils nothing.
asm(R"(
        .data
        .balign 4
zevProbe:
        .long 0
zevProbeStack:
        .long 0

        .text
        .globl zevEnterProbe
        .hidden zevEnterProbe
        .type zevEnterProbe, @function
zevEnterProbe:
        pushl %ebp
        pushl %ebx
        pushl %esi
        pushl %edi
        movl 20(%esp), %eax
        call 1f
1:      popl %edx
        leal zevProbe-1b(%edx), %edx
        movl %eax, (%edx)
        movl %esp, 4(%edx)
        subl $64, %esp
        andl $-16, %esp
        subl 20(%eax), %esp
        movl %esp, 76(%eax)
        pushl 16(%eax)
        pushl 12(%eax)
        pushl 8(%eax)
        pushl 4(%eax)
        movl 24(%eax), %ebx
        movl 28(%eax), %esi
        movl 32(%eax), %edi
        movl 36(%eax), %ebp
        movl 40(%eax), %ecx
        movl 44(%eax), %edx
        movl (%eax), %eax
        call *%eax
        .globl zevProbeReturn
        .hidden zevProbeReturn
zevProbeReturn:
        pushfl
        pushal
        cld
        call 2f
2:      popl %edx
        leal zevProbe-2b(%edx), %edx
        movl (%edx), %eax
        popl 60(%eax)
        popl 56(%eax)
        popl 64(%eax)
        popl %ecx
        addl $4, %ecx
        movl %ecx, 80(%eax)
        popl 52(%eax)
        popl 72(%eax)
        popl 68(%eax)
        popl 48(%eax)
        popl 84(%eax)
        movl 4(%edx), %esp
        popl %edi
        popl %esi
        popl %ebx
        popl %ebp
        ret

        .globl zevFound
        .hidden zevFound
        .local zevFoundHere
        .comm zevFoundHere, 60, 4
        .set zevFound, zevFoundHere
zevNote:
        pushfl
        pushal
        leal 40(%esp), %esi
        call 3f
3:      popl %edi
        leal zevFoundHere-3b(%edi), %edi
        cld
        popl (%edi)
        popl 4(%edi)
        popl 8(%edi)
        popl 12(%edi)
        popl 16(%edi)
        popl 20(%edi)
        popl 24(%edi)
        popl 28(%edi)
        popl 32(%edi)
        movl %edi, %edx
        addl $36, %edi
        movl $6, %ecx
        rep movsl
        movl 4(%edx), %esi
        movl (%edx), %edi
        movl $0xDEAD0001, %ecx
        movl $0xDEAD0002, %edx
        movl $0x1234, %eax
        ret

        .globl zevTakeFive
        .hidden zevTakeFive
        .type zevTakeFive, @function
zevTakeFive:
        call zevNote
        ret $20

        .globl zevTakeThree
        .hidden zevTakeThree
        .type zevTakeThree, @function
zevTakeThree:
        call zevNote
        ret $12
)");
