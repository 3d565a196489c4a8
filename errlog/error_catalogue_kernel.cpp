// The OSE system calls and the errors the kernel reports.
#include "errlog/error_catalogue.h"

const errOse_syscall errOse_systemCalls[] = {
    {0x10000, "addressee"},
    {0x20000, "alloc"},
    {0x30000, "assign_linkhandler"},
    {0x40000, "attach"},
    {0x50000, "attach_segment"},
    {0x60000, "clear_bp"},
    {0x70000, "create_block"},
    {0x80000, "create_error_handler"},
    {0x90000, "create_pool"},
    {0xa0000, "create_process"},
    {0xb0000, "create_sem"},
    {0xc0000, "current_process"},
    {0xd0000, "delay"},
    {0xe0000, "detach"},
    {0xf0000, "error"},
    {0x100000, "flush"},
    {0x110000, "free_buf"},
    {0x120000, "get_bid"},
    {0x130000, "get_bid_list"},
    {0x140000, "get_cpu"},
    {0x150000, "get_env"},
    {0x160000, "get_env_list"},
    {0x170000, "get_fsem"},
    {0x180000, "get_mem"},
    {0x190000, "get_pcb"},
    {0x1a0000, "get_pid_list"},
    {0x1b0000, "get_pri"},
    {0x1c0000, "get_ptype"},
    {0x1d0000, "get_sem"},
    {0x1e0000, "get_signal"},
    {0x1f0000, "get_systime"},
    {0x200000, "get_ticks"},
    {0x210000, "get_uid"},
    {0x220000, "hunt"},
    {0x230000, "hunt_from"},
    {0x240000, "intercept"},
    {0x250000, "kill_proc"},
    {0x260000, "kill_sem"},
    {0x270000, "power_fail"},
    {0x280000, "receive"},
    {0x290000, "receive_from"},
    {0x2a0000, "receive_w_tmo"},
    {0x2b0000, "restore"},
    {0x2c0000, "resume"},
    {0x2d0000, "send"},
    {0x2e0000, "sender"},
    {0x2f0000, "send_w_s"},
    {0x300000, "set_bp"},
    {0x310000, "set_env"},
    {0x320000, "set_fsem"},
    {0x330000, "set_mem"},
    {0x340000, "set_pcb"},
    {0x350000, "set_pri"},
    {0x360000, "set_segment"},
    {0x370000, "sigsize"},
    {0x380000, "signal_fsem"},
    {0x390000, "signal_sem"},
    {0x3a0000, "start"},
    {0x3b0000, "start_ose"},
    {0x3c0000, "stop"},
    {0x3d0000, "system_tick"},
    {0x3e0000, "tick"},
    {0x3f0000, "wait_fsem"},
    {0x400000, "wait_sem"},
    {0x410000, "wake_up"},
    {0x420000, "extend_pool"},
    {0x430000, "receive_with"},
    {0x440000, "set_pri_for"},
    {0, nullptr},
};

static const errOse_error kernel_err_rows[] = {
    {0x12, "OSE_ENO_KERN_SPACE",
     "The kernel ran out of memory for its own data structures.\n"
     "The extra parameter contains the number of bytes requested.\n",
     1},
    {0x20, "OSE_ENO_USER_SIGSPACE",
     "There is no room left in the signal pool for the requested buffer.\n"
     "The extra parameter contains the requested buffer size.\n",
     1},
    {0x2, "OSE_ENO_USER_STACKSPACE",
     "There is no room left in the stack pool for a new process stack.\n"
     "The extra parameter contains the requested stack size.\n",
     1},
    {0x21, "OSE_EPOOL_EXTENSION_FAILED",
     "Pool extension failed. The extra parameter contains a the initial\n"
     "error code.\n"
     "I.e one of:  OSE_ENO_KERN_SPACE    (0x12),\n"
     "             OSE_ENO_USER_SIGSPACE (0x20) or\n"
     "             OSE_ENO_USER_STACKSPACE (0x02).\n",
     1},
    {0x11, "OSE_EBUFFER_TOO_LARGE",
     "A signal buffer larger than the largest buffer size of the pool\n"
     "was requested. The extra parameter contains the requested size.\n",
     1},
    {0x1, "OSE_ESTACK_TOO_LARGE",
     "A process was created with a stack larger than the largest stack\n"
     "size of the pool. The extra parameter contains the requested size.\n",
     1},
    {0x22, "OSE_EBLOCK_HAS_PROCESSES",
     "An attempt was made to kill a block that still holds processes.\n",
     0},
    {0x32, "OSE_EILLEGAL_PROCESS_ID",
     "A system call was given a process identity that is not valid.\n"
     "The extra parameter contains the offending process identity.\n",
     1},
    {0x31, "OSE_EUSED_NIL_POINTER",
     "A NIL pointer was presented to the kernel where a signal buffer\n"
     "was expected. The extra parameter contains the address of the\n"
     "pointer variable.\n",
     1},
    {0x5f, "OSE_ENOT_SIG_OWNER",
     "The calling process tried to use a signal buffer that it does\n"
     "not own.\n",
     4},
    {0x57, "OSE_ECANNOT_RESTORE",
     "A signal buffer could not be restored, since it is not owned\n"
     "by the calling process.\n",
     4},
    {0xa5, "OSE_ENO_BUFFER_END_MARK",
     "A valid end mark could not be found in the signal buffer \n"
     "presented to the kernel. The extra parameter contains the\n"
     "address of the signal buffer.\n",
     4},
    {0x23, "OSE_EUNREASONABLE_SIZES",
     "A pool was created with buffer or stack sizes that are not\n"
     "reasonable.\n",
     0},
    {0x3, "OSE_ETOO_MANY_PROCESSES",
     "The maximum number of processes in the system was exceeded.\n",
     0},
    {0x24, "OSE_ETOO_MANY_ATTACHED",
     "Too many attach signals are pending in the system.\n",
     0},
    {0x4a, "OSE_ECORRUPTED_KERNEL",
     "Kernel data was damaged. The extra parameter contains an\n"
     "undocumented subcode.\n",
     1},
    {0x25, "OSE_EVECTOR_IN_USE",
     "An interrupt process was created for a vector that is already\n"
     "in use. The extra parameter contains the vector number.\n",
     1},
    {0x26, "OSE_EILLEGAL_SYSTEMCALL",
     "A system call was made that is not allowed in the current\n"
     "context, such as a blocking call from an interrupt process.\n",
     0},
    {0x27, "OSE_EINTERSEGMENT_SEND",
     "A signal was sent between segments in a way that is not allowed.\n",
     0},
    {0x28, "OSE_EBAD_INTLEVEL",
     "An interrupt process was created with an illegal interrupt level.\n"
     "The extra parameter contains the requested level.\n",
     1},
    {0x29, "OSE_ERECURSIVE_ERROR",
     "An error handler caused a new error while handling an error.\n"
     "The extra parameter contains the code of the new error.\n",
     1},
    {0x2a, "OSE_ERECURSIVE_SYSERROR",
     "The system error handler caused a new error while handling an\n"
     "error. The extra parameter contains the code of the new error.\n",
     1},
    {0x2b, "OSE_EILLEGAL_SEM_VALUE",
     "A semaphore was created with an illegal initial value.\n"
     "The extra parameter contains the value.\n",
     1},
    {0x1f, "OSE_EILLEGAL_SEMAPHORE",
     "A system call was given a semaphore that is not valid.\n",
     0},
    {0x1d, "OSE_EKILLED_STATIC_SEMAPHORE",
     "An attempt was made to kill a static semaphore.\n",
     0},
    {0x1e, "OSE_EKILLED_SEMAPHORE_IN_USE",
     "A semaphore was killed while processes were waiting at it.\n",
     0},
    {0x2c, "OSE_EINTERSEGMENT_SEMAPHORE_REF",
     "A semaphore in another segment was referenced.\n"
     "The extra parameter contains the address of the semaphore.\n",
     1},
    {0x2d, "OSE_EDETACHED_TWICE",
     "An attach reference was detached twice.\n",
     0},
    {0x2e, "OSE_EDETACHED_TOO_LATE",
     "Detach was called too late: the attached process is already\n"
     "dead and its attach signal is on its way.\n",
     0},
    {0x2f, "OSE_EDETACH_AFTER_RECEIVE",
     "Detach was called with a reference whose attach signal had\n"
     "already been received by the caller.\n",
     0},
    {0x30, "OSE_EBAD_PROCESS_TYPE",
     "A process of the wrong type was given to a system call, such as\n"
     "an interrupt process where a prioritized process is needed.\n",
     0},
    {0x36, "OSE_ENOT_ATTREF_OWNER",
     "The calling process is not the owner of the specified attach reference",
     1},
    {0x47, "OSE_EILLEGAL_FLUSH_SENDER",
     "Flush was called with a sender that is not valid.\n",
     0},
    {0x48, "OSE_EKILLED_STATIC_PROCESS",
     "An attempt was made to kill a static process.\n",
     0},
    {0x49, "OSE_EILLEGAL_REDIRCOUNT",
     "A process was created with an illegal number of redirection\n"
     "entries.\n",
     0},
    {0xa6, "OSE_ECORRUPTED_POOL",
     "The kernel found the administration of a pool damaged.\n"
     "The extra parameter contains the address of the damaged data.\n",
     0x40},
    {0x52, "OSE_ESPURIOUS_INTERRUPT",
     "An interrupt occurred for which no interrupt process is installed.\n"
     "The extra parameter contains the vector number.\n",
     1},
    {0x53, "OSE_EATTACHED_TO_CALLER",
     "A process attached to itself.\n",
     0},
    {0x54, "OSE_EINTERSEGMENT_COPY_FAILED",
     "Copying a signal buffer to another segment failed.\n"
     "The extra parameter contains the address of the signal buffer.\n",
     1},
    {0x55, "OSE_EINTSTACK_TOO_LARGE",
     "The interrupt stack requested is larger than the kernel allows.\n"
     "The extra parameter contains the requested size.\n",
     1},
    {0x56, "OSE_EKILLED_SYSTEM_DAEMON",
     "A system daemon process was killed.\n"
     "The extra parameter contains the identity of the killed process.\n",
     1},
    {0x58, "OSE_EFRAGMENT_TOO_SMALL",
     "A memory fragment given to the kernel is too small to be used.\n"
     "The extra parameter contains the size of the fragment.\n",
     1},
    {0x59, "OSE_ECONCURRENT_TICK_CALL",
     "The tick system call was made again before the previous call\n"
     "had returned.\n",
     0},
    {0x5a, "OSE_EILLEGAL_USER_CALL",
     "A system call was made that is not allowed from a user process.\n",
     0},
    {0x5b, "OSE_EALREADY_STARTED",
     "A process that is already started was started again.\n"
     "The extra parameter contains the identity of the process.\n",
     1},
    {0x5c, "OSE_ELINKHANDLER_DEADLOCK",
     "A link handler would have deadlocked the system.\n"
     "The extra parameter contains the identity of the link handler.\n",
     1},
    {0x5d, "OSE_EILLEGAL_ENVNAME",
     "An environment variable name that is not valid was used.\n",
     0},
    {0x5e, "OSE_EILLEGAL_POOL",
     "A system call was given a pool identity that is not valid.\n",
     0},
    {0x70, "OSE_EWILD_SIG_POINTER",
     "A pointer that does not point to a signal buffer was presented\n"
     "to the kernel. The extra parameter contains the pointer.\n",
     1},
    {0x71, "OSE_EBAD_PARAMETER",
     "A system call was given an invalid parameter.\n"
     "The extra parameter contains the value of that parameter.\n",
     1},
    {0x72, "OSE_EFRAGMENT_IN_USE",
     "A memory fragment given to the kernel is already in use.\n"
     "The extra parameter contains the address of the fragment.\n",
     1},
    {0x73, "OSE_EILLEGAL_SUPER_MODE",
     "A process ran in supervisor mode where this is not allowed.\n",
     4},
    {0x74, "OSE_ESPURIOUS_SYSTEM_SIGNAL",
     "The kernel received a system signal that it did not expect.\n",
     4},
    {0x75, "OSE_EFRAGMENT_TOO_LARGE",
     "A memory fragment given to the kernel is larger than it can\n"
     "handle. The extra parameter contains the size of the fragment.\n",
     1},
    {0x76, "OSE_ESTOP_OVERFLOW",
     "A process was stopped more times than its stop counter can hold.\n"
     "The extra parameter contains the identity of the process.\n",
     1},
    {0x77, "OSE_ESEM_OVERFLOW",
     "A semaphore was signalled beyond its largest value.\n"
     "The extra parameter contains the address of the semaphore.\n",
     1},
    {0x78, "OSE_EBAD_HUNT_PRI",
     "A hunt was made by a process whose priority does not allow it.\n",
     0},
    {0x79, "OSE_EILLEGAL_PRISYSTEMCALL",
     "A system call that needs a prioritized process was made by a\n"
     "process of another type.\n",
     0},
    {0x7a, "OSE_EILLEGAL_CONFIGURATION",
     "The kernel configuration holds an illegal value.\n"
     "The extra parameter tells which value was refused.\n",
     1},
    {0x7b, "OSE_ETOO_MANY_TMO_REQUESTS",
     "Too many timeout requests are pending at the same time.\n"
     "The extra parameter contains the identity of the requesting process.\n",
     1},
    {0x7c, "OSE_ETMO_ALREADY_CANCELLED",
     "A timeout request was cancelled twice.\n"
     "The extra parameter contains the timeout reference.\n",
     1},
    {0x7e, "OSE_ECRT_KRN_INCOMPATIBLE",
     "The C runtime library is not compatible with the kernel.\n"
     "The extra parameter contains the interface version of the library.\n",
     1},
    {0x7f, "OSE_ETOO_MANY_PPD_KEYS",
     "Too many keys for per process data were created.\n"
     "The extra parameter contains the highest number of keys.\n",
     1},
    {0x80, "OSE_ETOO_LONG_PPD_KEY_STRING",
     "The name of a per process data key is too long.\n"
     "The extra parameter contains the address of the name.\n",
     1},
    {0x81, "OSE_EILLEGAL_PPDKEY",
     "A per process data key that is not valid was used.\n"
     "The extra parameter contains the key.\n",
     1},
    {0x82, "OSE_EMUTEX_INVALID",
     "An operation was made on a mutex that is not valid.\n"
     "The extra parameter contains the address of the mutex.\n",
     1},
    {0x83, "OSE_EMUTEX_ALREADY_INITIALIZED",
     "A mutex was initialized twice.\n"
     "The extra parameter contains the address of the mutex.\n",
     1},
    {0x84, "OSE_EMUTEX_IN_USE",
     "A mutex was destroyed while it was in use.\n"
     "The extra parameter contains the address of the mutex.\n",
     1},
    {0x85, "OSE_EMUTEX_DESTROYED",
     "An operation was made on a mutex that has been destroyed.\n"
     "The extra parameter contains the address of the mutex.\n",
     1},
    {0x86, "OSE_EMUTEX_LOCKED",
     "A mutex that is locked was destroyed or initialized again.\n"
     "The extra parameter contains the address of the mutex.\n",
     1},
    {0x87, "OSE_EMUTEX_DEADLOCK",
     "Locking the mutex would have deadlocked the calling process.\n"
     "The extra parameter contains the address of the mutex.\n",
     1},
    {0x88, "OSE_EMUTEX_NOT_OWNER",
     "A mutex was unlocked by a process that does not hold it.\n"
     "The extra parameter contains the address of the mutex.\n",
     1},
    {0x89, "OSE_EMUTEX_OWNER_DEAD",
     "The process that held the mutex was killed while holding it.\n"
     "The extra parameter contains the address of the mutex.\n",
     1},
    {0x8a, "OSE_EILLEGAL_USER_MODE",
     "A call that needs supervisor mode was made in user mode.\n"
     "The extra parameter contains the number of the system call.\n",
     1},
    {0x8b, "OSE_EPRIVILEGED_SYSCALL",
     "A privileged system call was made by a process that may not\n"
     "make it. The extra parameter contains the number of the system call.\n",
     1},
    {0x8c, "OSE_ETOO_MANY_MUTEXES",
     "More mutexes were created than the kernel was configured for.\n"
     "The extra parameter contains the configured number.\n",
     1},
    {0x101, "OSE_EUSER_STACK_OVERFLOW",
     "The stack of a process has overflowed.\n"
     "The extra parameter contains the identity of the process.\n",
     1},
    {0x102, "OSE_ESUPERV_STACK_OVERFLOW",
     "The supervisor stack of a process has overflowed.\n"
     "The extra parameter contains the identity of the process.\n",
     1},
    {0x103, "OSE_EINTERRUPT_STACK_OVERFLOW",
     "The interrupt stack has overflowed.\n"
     "The extra parameter contains the identity of the interrupt process.\n",
     1},
    {0x104, "OSE_EUNKNOWN_BREAKPOINT",
     "A breakpoint was hit that the kernel does not know of.\n",
     0},
    {0x105, "OSE_EUNKNOWN_INTERRUPT",
     "An interrupt occurred that the kernel cannot identify.\n"
     "The extra parameter contains the exception offset.\n",
     1},
    {0x107, "OSE_EPROCESS_ENDED",
     "A process returned from its entry function. Processes must never\n"
     "return. The extra parameter contains the identity of the process.\n",
     1},
    {0x108, "OSE_ESTART_STACK_OVERFLOW",
     "The stack used while the system starts has overflowed.\n"
     "The extra parameter contains the stack pointer.\n",
     1},
    {0x109, "OSE_EUNRECOGNIZED_CPU",
     "The kernel does not recognize the processor it runs on.\n"
     "The extra parameter contains the processor version register.\n",
     1},
    {0x10a, "OSE_EINCOMPATIBLE_CPU_HAL",
     "The kernel configuration refers to at least one cpu hal withan interface version that isn't compatible with the kernel",
     1},
    {0x110, "OSE_EUNDEFINED_SYSCALL_CODE",
     "A system call was made with a code that the kernel does not know.\n"
     "The extra parameter contains the system call code.\n",
     1},
    {0x111, "OSE_EUNEXPECTED_EXCEPTION",
     "An unexpected exception occured.\n"
     "The extra parameter contains the address where it happened.\n",
     1},
    {0x112, "OSE_EPRIORITY_ERROR",
     "A process was given a priority that is out of range.\n"
     "The extra parameter contains the priority.\n",
     1},
    {0x113, "OSE_EUNEXPECTED_EXCEPTION_REGDUMP",
     "An unexpected exception occured.\n"
     "The exception offset is supplied in the subcode field.\n",
     0x80},
    {0x115, "OSE_ESYSCALL_TOO_EARLY",
     "A system call was made before the kernel was ready for it.\n"
     "The extra parameter contains the number of the system call.\n",
     1},
    {0x116, "OSE_EINCOMPATIBLE_CONFIGURATION",
     "The configuration does not fit this kernel.\n"
     "The extra parameter contains an undocumented subcode.\n",
     1},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_kernel_err = {"OSE KERNEL", 0xffff, kernel_err_rows};

