// The errors of OSE's services, one table per component, and the table of
// tables that sorts a code into one. Keys, masks and codes stand as the
// target defines them, including those where a row can never be reached or
// stands for several codes.
#include "errlog/error_catalogue.h"

static const errOse_error bsp_error_rows[] = {
    {0x880000, "OSE_BSP_EBIOSINSTALL_FAILED",
     "The board support package could not install the BIOS.\n",
     0},
    {0x880001, "OSE_BSP_EBIOSOPEN_FAILED",
     "The board support package could not open the BIOS.\n",
     0},
    {0x880002, "OSE_BSP_EDEVICE_INIT_FAILED",
     "The board support package could not initialize a device.\n",
     0},
    {0x880003, "OSE_BSP_EBIOSCALL_FAILED",
     "A BIOS call made by the board support package failed.\n",
     0},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_bsp_error = {"BSP", 0xff, bsp_error_rows};

static const errOse_error efsCommon_error_rows[] = {
    {0x900000, "OSE_EFS_EREGISTER_FAILED",
     "EFS could not register with the file system server.\n",
     0},
    {0x900001, "OSE_EFS_EUNKNOWN_SIGNAL",
     "An EFS process received a signal it does not know.\n",
     0},
    {0x900002, "OSE_EFS_EHUNT_FSS_TIMEOUT",
     "The hunt for the file system server timed out.\n",
     0},
    {0x900003, " OSE_EFS_EHUNT_PARTMAN_FAILED",
     "The hunt for the partition manager failed.\n",
     0},
    {0x900004, "OSE_EFS_EABORT_CALLED",
     "Abort call made. \n"
     "\n"
     "   info: %s\n"
     "   file: %s\n"
     "   line: %d\n",
     0},
    {0x900005, " OSE_EFS_EINTERNAL_FAULT",
     "EFS detected an internal fault.\n",
     0},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_efsCommon_error = {"EFS", 0xff, efsCommon_error_rows};

static const errOse_error efsFlib_error_rows[] = {
    {0x910000, "OSE_EFS_FLIB_ESHARE_TOO_LATE",
     "File descriptors were shared after the process had begun to\n"
     "use them.\n",
     0},
    {0x910001, "OSE_EFS_FLIB_EINVALID_CLONE",
     "A file descriptor could not be cloned.\n"
     "The extra parameter contains the file descriptor.\n",
     1},
    {0x910002, "OSE_EFS_FLIB_EINVALID_FILE",
     "An operation was made on a file descriptor that is not valid.\n"
     "The extra parameter contains the file descriptor.\n",
     1},
    {0x910003, "OSE_EFS_FLIB_EINVALID_DIR",
     "An operation was made on a directory stream that is not valid.\n"
     "The extra parameter contains the directory stream pointer.\n",
     1},
    {0x910004, "OSE_EFS_FLIB_EWRITE_AFTER_READ",
     "A write followed a read on a stream without a positioning call\n"
     "in between. The extra parameter contains the stream pointer.\n",
     1},
    {0x910005, "OSE_EFS_FLIB_EREAD_AFTER_WRITE",
     "A read followed a write on a stream without a flush or a\n"
     "positioning call in between.\n"
     "The extra parameter contains the stream pointer.\n",
     1},
    {0x910006, "OSE_EFS_FLIB_ENO_STDIN",
     "The process has no standard input.\n",
     0},
    {0x910007, "OSE_EFS_FLIB_ENO_STDOUT",
     "The process has no standard output.\n",
     0},
    {0x910008, "OSE_EFS_FLIB_ENO_STDERR",
     "The process has no standard error.\n",
     0},
    {0x910009, "OSE_EFS_FLIB_EENV_TMPDIR_NOT_SET",
     "The environment variable TMPDIR is not set.\n",
     0},
    {0x91000a, "OSE_EFS_FLIB_ECLOSE_FD_IN_USE",
     "A file descriptor was closed while another call used it.\n"
     "The extra parameter contains the file descriptor.\n",
     1},
    {0x91000b, "OSE_EFS_FLIB_EINVALID_UNGETC",
     "ungetc was called on a stream where it is not allowed.\n"
     "The extra parameter contains the stream pointer.\n",
     1},
    {0x91000c, "OSE_EFS_FLIB_EINVALID_SHARE",
     "File descriptors were shared with a process that is not valid.\n"
     "The extra parameter contains the identity of that process.\n",
     1},
    {0x91000d, "OSE_EFS_FLIB_EFD_NOT_SOCKET",
     "A socket call was made on a file descriptor that is not a socket.\n"
     "The extra parameter contains the file descriptor.\n",
     1},
    {0x91000e, "OSE_EFS_FLIB_EFD_NOT_FILE",
     "A file call was made on a descriptor that is not a file.\n"
     "The extra parameter contains the file descriptor.\n",
     1},
    {0x91000f, "OSE_EFS_FLIB_EUNRESOLVED_INET_FUNCTION",
     "A network function was called, but the network library is not\n"
     "linked in.\n",
     0},
    {0x910010, "OSE_EFS_FLIB_EINVALID_PEEKC",
     "peekc was called on a stream where it is not allowed.\n"
     "The extra parameter contains the stream pointer.\n",
     1},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_efsFlib_error = {"EFS FLIB", 0xff, efsFlib_error_rows};

static const errOse_error efsSerdd_error_rows[] = {
    {0x920000, "OSE_EFS_SERDD_ENO_DEVICE",
     "The serial device driver found no device.\n",
     0},
    {0x920001, "OSE_EFS_SERDD_EUNIT_BUSY",
     "The serial unit is already in use.\n",
     0},
    {0x920002, "OSE_EFS_SERDD_ESETCONF_FAILED",
     "The serial unit could not be configured.\n",
     0},
    {0x920003, "OSE_EFS_SERDD_EUNEXPECTED_ERROR",
     "The serial device driver met an unexpected error.\n",
     0},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_efsSerdd_error = {"EFS SERDD", 0xff, efsSerdd_error_rows};

static const errOse_error efsShell_error_rows[] = {
    {0x930000, "OSE_EFS_SHELL_EHUNT_FAILED",
     "The shell could not find a process it needs.\n"
     "The extra parameter contains the address of the process name.\n",
     1},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_efsShell_error = {"EFS SHELL", 0xff, efsShell_error_rows};

static const errOse_error efsStartEfs_error_rows[] = {
    {0x940000, "OSE_EFS_STARTEFS_EMOUNT_TTY_FAILED",
     "The console could not be mounted at start.\n"
     "The extra parameter contains the EFS status code.\n",
     8},
    {0x940001, "OSE_EFS_STARTEFS_EOPEN_TTY_FAILED",
     "The console could not be opened at start.\n"
     "The extra parameter contains the EFS status code.\n",
     8},
    {0x940002, "OSE_EFS_STARTEFS_EMOUNT_DISK_FAILED",
     "A disk could not be mounted at start.\n"
     "The extra parameter contains the EFS status code.\n",
     8},
    {0x940003, "OSE_EFS_STARTEFS_EFORMAT_DISK_FAILED",
     "A disk could not be formatted at start.\n"
     "The extra parameter contains the EFS status code.\n",
     8},
    {0x940004, "OSE_EFS_STARTEFS_ECHDIR_DISK_FAILED",
     "The working directory could not be set to a disk at start.\n"
     "The extra parameter contains the EFS status code.\n",
     8},
    {0x940005, " OSE_EFS_STARTEFS_ERESOLVE_FAILED",
     "A volume name could not be resolved at start.\n"
     "The extra parameter contains the EFS status code.\n",
     8},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_efsStartEfs_error = {"EFS STARTEFS", 0xff, efsStartEfs_error_rows};

static const errOse_error heap_error_rows[] = {
    {0x820000, "OSE_HEAP_EBIOS_INSTALL_FAILED",
     "The heap could not install its BIOS entry.\n"
     "The extra parameter contains the BIOS status.\n",
     1},
    {0x820001, "OSE_HEAP_EHUNT_HEAPD_FAILED",
     "The heap daemon could not be found.\n",
     0},
    {0x820002, "OSE_HEAP_EBIOS_OPEN_FAILED",
     "The heap could not open the BIOS.\n",
     0},
    {0x820003, "OSE_HEAP_EUNKNOWN_SIGNAL",
     "The heap daemon received a signal it does not know.\n"
     "The extra parameter contains the signal number.\n",
     1},
    {0x820004, "OSE_HEAP_EUNKNOWN_FCODE",
     "The heap was called with a function code it does not know.\n"
     "The extra parameter contains the function code.\n",
     1},
    {0x820005, "OSE_HEAP_EINIT_HEAP_FAILED",
     "The heap could not be initialized.\n",
     0},
    {0x820006, "OSE_HEAP_ENO_HEAP_INIT_FLIB",
     "The file library was started before the heap was initialized.\n",
     0},
    {0x820007, "OSE_HEAP_EFREED_BUFFER_OVERWRITTEN",
     "A free buffer overwritten by user.\n",
     0x100},
    {0x820100, "OSE_HEAP_ESIZE_TOO_LARGE",
     "A buffer larger than the heap can give was requested.\n",
     0x100},
    {0x820101, "OSE_HEAP_EPTR_INVALID",
     "A pointer that does not point to a heap buffer was freed or\n"
     "resized.\n",
     0x100},
    {0x820102, "OSE_HEAP_EBUFFER_FREE",
     "A heap buffer that is already free was freed again.\n",
     0x100},
    {0x820103, "OSE_HEAP_EPROCESS_NOT_OWNER",
     "A heap buffer was freed by a process that does not own it.\n",
     0x100},
    {0x820104, "OSE_HEAP_EENDMARK_OVERWRITTEN",
     "The end mark behind a heap buffer was overwritten: something\n"
     "wrote beyond the end of the buffer.\n",
     0x100},
    {0x820105, "OSE_HEAP_EHEAP_EXHAUSTED",
     "The heap has no memory left for the request.\n",
     0x100},
    {0x820106, "OSE_HEAP_ENO_EXTEND_HEAP",
     "The heap could not be extended.\n",
     0},
    {0x820110, "OSE_HEAP_ESYSMEM_ALLOC_FAILED",
     "System memory for the heap could not be allocated.\n",
     0x100},
    {0x820107, "OSE_HEAP_EDYNAMIC_LINK_FAILED",
     "The heap could not be linked to a load module.\n",
     0},
    {0x820108, "OSE_HEAP_EMODULE_TOO_OLD",
     "A load module was built for an older heap interface.\n"
     "The extra parameter contains the module's interface version.\n",
     0x40},
    {0x820109, "OSE_HEAP_EHEAP_INCONSISTENT",
     "The administration of the heap is inconsistent.\n",
     0},
    {0x820111, "OSE_HEAP_EILLEGAL_EXTENSION",
     "An extension of the heap was refused.\n",
     0},
    {0x820112, "OSE_HEAP_EHEAP_CORRUPTED",
     "The heap has been corrupted.\n",
     0},
    {0x820113, "OSE_HEAP_EILLEGAL_USER",
     "A process that may not use the heap called it.\n",
     0},
    {0x820300, "HEAP_DEBUG_EINIT_FAILED",
     "The heap debugger could not start.\n"
     "The extra parameter contains the failing status.\n",
     0x40},
    {0x820301, "HEAP_DEBUG_EILLEGAL_PROC_TYPE",
     "The heap debugger was called from a process of a type it cannot\n"
     "serve. The extra parameter contains the process type.\n",
     0x40},
    {0x820302, "HEAP_DEBUG_EMODULE_NOT_DEFINED",
     "The heap debugger found no definition of the load module.\n"
     "The extra parameter contains the identity of the module.\n",
     0x40},
    {0x820303, "HEAP_DEBUG_EBUFFER_TOUCHED_AFTER_FREE",
     "A heap buffer was written after it had been freed.\n"
     "The extra parameter contains the address of the buffer.\n",
     0x40},
    {0x820304, "HEAP_DEBUG_EPPDATA_VERSION_MISMATCH",
     "The per process data of the heap debugger has the wrong version.\n"
     "The extra parameter contains the version found.\n",
     0x40},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_heap_error = {"HEAP", 0xffff, heap_error_rows};

static const errOse_error ntp_error_rows[] = {
    {0xc30000, "OSE_NTP_ERROR_CLOCK_TOO_SCREWED_UP",
     "The local clock is too far from the server's time to be\n"
     "corrected.\n",
     0},
    {0xc30001, "OSE_NTP_ERROR_SOCKET_SETUP_FAILURE",
     "The NTP client could not set up its socket.\n",
     0},
    {0xc30002, "OSE_NTP_ERROR_NO_NAME_SERVER",
     "No name server was found to resolve the NTP server's name.\n",
     0},
    {0xc30003, "OSE_NTP_ERROR_SERVICE_NOT_REGISTERED",
     "The NTP service could not be registered.\n",
     0},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_ntp_error = {"OSE NTP", 0xff, ntp_error_rows};

static const errOse_error ns_error_rows[] = {
    {0x808d0000, "OSENS_NOT_IMPLEMENTED_ERR   ",
     "The name server got a request that it does not implement.\n"
     "The extra parameter contains the signal number of the request.\n",
     1},
    {0x808d0001, "OSENS_INTERNAL_ERR          ",
     "The name server met an internal error.\n",
     0},
    {0x8d0002, "OSENS_ILLEGAL_SID_ERR       ",
     "The name server was given a service identity that is not valid.\n"
     "The extra parameter contains the identity.\n",
     1},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_ns_error = {"OSE NS", 0xff, ns_error_rows};

static const errOse_error ospf_error_rows[] = {
    {0x740000, "OSE_OSPF_ERROR_INET_NOT_FOUND",
     "OSPF could not find the internet process.\n",
     0},
    {0x740001, "OSE_OSPF_ERROR_SOCKET_NOT_CREATED",
     "OSPF could not create its socket.\n",
     0},
    {0x740002, "OSE_OSPF_ERROR_ALLOC_FAILED",
     "OSPF could not allocate memory.\n",
     0},
    {0x740003, "OSE_OSPF_ERROR_SAVE_STATE_FAILED",
     "OSPF could not save its state.\n",
     0},
    {0x740004, "OSE_OSPF_ERROR_RESTORE_STATE_FAILED",
     "OSPF could not restore its saved state.\n",
     0},
    {0x740005, "OSE_OSPF_ERROR_SOCKET_ERROR",
     "A socket call made by OSPF failed.\n",
     0},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_ospf_error = {"OSPF", 0xffff, ospf_error_rows};

static const errOse_error otl_error_rows[] = {
    {0x80610000, "OSE_OTL_EMAX_SIG_SIZE",
     "A signal larger than the largest signal size of the link was sent.\n",
     0},
    {0x80610001, "OSE_OTL_EMAX_SIG_SIZE_TOO_SMALL",
     "The largest signal size configured for the link is too small.\n",
     0},
    {0x80610002, "OSE_OTL_EBUFBEG_OFFS_ERROR",
     "The configured offset of the buffer start is wrong.\n",
     0},
    {0x80610003, "OSE_OTL_EMAX_FLUSH",
     "Too many signals were flushed at once.\n",
     0},
    {0x80610004, "OSE_OTL_EPID_LAL_OR_ACTION_TRANSMIT",
     "The link access layer process or the transmit action is not\n"
     "valid.\n",
     0},
    {0x80610005, "OSE_OTL_EUNDEFINED_SIG",
     "The link handler received a signal it does not know.\n"
     "The extra parameter contains the signal number.\n",
     1},
    {0x80610006, "OSE_OTL_EREM_ADDR_EQU_BROADC_ADDR",
     "The remote address of a connection is the broadcast address.\n",
     0},
    {0x80610007, "OSE_OTL_ECORRUPT_OTL_TRANS_ACK_RECEIVE_SIG",
     "A received transmit acknowledge signal is corrupt.\n",
     0},
    {0x80610008, "OSE_OTL_ECORRUPT_OTL_RECEIVE_SIG",
     "A received signal is corrupt.\n",
     0},
    {0x80610009, "OSE_OTL_ETOO_MANY_CONNECTIONS",
     "Too many simultaneous connections attempted, max is 4095.\n",
     0},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_otl_error = {"OTL", 0xff, otl_error_rows};

static const errOse_error rtc_error_rows[] = {
    {0x8b0000, "OSE_RTC_EBIOS_INSTALL_FAILED",
     "The real time clock could not install its BIOS entry.\n"
     "The extra parameter contains the BIOS status.\n",
     1},
    {0x8b0001, "OSE_RTC_EBIOS_OPEN_FAILED",
     "The real time clock could not open the BIOS.\n",
     0},
    {0x8b0002, "OSE_RTC_EUNKNOWN_SIGNAL",
     "The real time clock received a signal it does not know.\n"
     "The extra parameter contains the signal number.\n",
     1},
    {0x8b0003, "OSE_RTC_EUNKNOWN_FCODE",
     "The real time clock was called with a function code it does not\n"
     "know. The extra parameter contains the function code.\n",
     1},
    {0x8b0004, "OSE_RTC_EASCTIME_INVALID_TM",
     "asctime was given a time structure that is not valid.\n",
     0},
    {0x8b0005, "OSE_RTC_EHUNT_OSE_RTC_FAILED",
     "The real time clock process could not be found.\n",
     0},
    {0x8b0006, "OSE_RTC_EHISTORIC_PERIODIC_ALARM",
     "A periodic alarm was set to a time in the past.\n"
     "The extra parameter contains the alarm time.\n",
     1},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_rtc_error = {"RTC", 0xffff, rtc_error_rows};

static const errOse_error sdm_error_rows[] = {
    {0x8f0000, "SDM_ERROR_MEM",
     "The system debug monitor could not allocate memory.\n",
     0},
    {0x8f0001, "SDM_ERROR_INIT",
     "The system debug monitor could not start.\n",
     0},
    {0x8f0002, "SDM_ERROR_SET_BP",
     "The system debug monitor could not set a breakpoint.\n"
     "The extra parameter contains the address of the breakpoint.\n",
     1},
    {0x8f0003, "SDM_ERROR_SIGNAL",
     "The system debug monitor received a signal it does not know.\n"
     "The extra parameter contains the signal number.\n",
     1},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_sdm_error = {"SDM", 0xff, sdm_error_rows};

static const errOse_error fm_error_rows[] = {
    {0xc8, "FM_EINVALID_NAME",
     "EFS Format Manager: Invalid name",
     1},
    {0xc9, "FM_EINVALID_HANDLE",
     "EFS Format Manager: Invalid handle",
     1},
    {0xca, "FM_EINVALID_POSITION",
     "EFS Format Manager: Invalid position",
     1},
    {0xcb, "FM_EINVALID_DEVICE",
     "EFS Format Manager: Invalid device",
     1},
    {0xcc, "FM_EINVALID_BLOCK",
     "EFS Format Manager: Invalid block",
     1},
    {0xcd, "FM_EINVALID_LOCK",
     "EFS Format Manager: Invalid lock",
     1},
    {0xce, "FM_EINVALID_PARAMETERS",
     "EFS Format Manager: Invalid parameters",
     1},
    {0xcf, "FM_EINVALID_CLIENT",
     "EFS Format Manager: Invalid client",
     1},
    {0xd0, "FM_EOPER_NOT_IMPLEMENTED",
     "EFS Format Manager: Operation not implemented",
     1},
    {0xd1, "FM_EOPER_NOT_SUPPORTED",
     "EFS Format Manager: Operation not supported",
     1},
    {0xd2, "FM_EOPER_CANCELLED",
     "EFS Format Manager: Operation cancelled",
     1},
    {0xd3, "FM_EALREADY_MOUNTED",
     "EFS Format Manager: Already mounted",
     1},
    {0xd4, "FM_EDISK_NOT_FORMATTED",
     "EFS Format Manager: Disk not formatted",
     1},
    {0xd5, "FM_EDISK_NOT_VALIDATED",
     "EFS Format Manager: Disk not validated",
     1},
    {0xd6, "FM_EDISK_WRITE_PROTECT",
     "EFS Format Manager: Disk write protected",
     1},
    {0xd7, "FM_EDISK_BUSY",
     "EFS Format Manager: FM_EDISK_BUSY",
     1},
    {0xd8, "FM_EDISK_FULL",
     "EFS Format Manager: Disk full",
     1},
    {0xd9, "FM_EOBJECT_DELETE_PROTECT",
     "EFS Format Manager: Object delete protected",
     1},
    {0xda, "FM_EOBJECT_WRITE_PROTECT",
     "EFS Format Manager: Object write protected",
     1},
    {0xdb, "FM_EOBJECT_READ_PROTECT",
     "EFS Format Manager: Object read protected",
     1},
    {0xdc, "FM_EOBJECT_EXISTS",
     "EFS Format Manager: Object exists",
     1},
    {0xdd, "FM_EOBJECT_NOT_FOUND",
     "EFS Format Manager: Object not found",
     1},
    {0xde, "FM_EOBJECT_IN_USE",
     "EFS Format Manager: Object in use",
     1},
    {0xdf, "FM_EOBJECT_TOO_LARGE",
     "EFS Format Manager: Object too large",
     1},
    {0xe0, "FM_EOBJECT_WRONG_TYPE",
     "EFS Format Manager: Object of wrong type",
     1},
    {0xe1, "FM_EDIR_NOT_EMPTY",
     "EFS Format Manager: Directory not empty",
     1},
    {0xe2, "FM_ELOCK_COLLISION",
     "EFS Format Manager: Lock collision",
     1},
    {0xe3, "FM_EHEAP_EXHAUSTED",
     "EFS Format Manager: Heap exhausted",
     1},
    {0xe4, "FM_EDEVICE_LOST",
     "EFS Format Manager: Device lost",
     1},
    {0xe5, "FM_EFSS_LOST",
     "EFS Format Manager: File system server lost",
     1},
    {0xe6, "FM_EVM_LOST",
     "EFS Format Manager: Volume manager lost",
     1},
    {0xe7, "FM_EOBJECT_EXECUTE_PROTECT",
     "EFS Format Manager: Object execute protected",
     1},
    {0xe8, "FM_EOPER_NOT_ALLOWED",
     "EFS Format Manager: Operation not allowed",
     1},
    {0xe9, "FM_ENOT_ABSOLUTE_PATH",
     "EFS Format Manager: Not an absolute path",
     1},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_fm_error = {"EFS Format Manager", 0xffff, fm_error_rows};

static const errOse_error ragsock_error_rows[] = {
    {0xf20100, "RAGSOCK_ERR_NOMEM",
     "The socket layer ran out of memory.\n"
     "The extra parameter contains the requested size.\n",
     8},
    {0xf20200, "RAGSOCK_ERR_CAP",
     "The socket layer reached its capacity.\n"
     "The extra parameter contains the limit.\n",
     8},
    {0xf20300, "RAGSOCK_ERR_FSS",
     "The socket layer lost contact with the file system server.\n"
     "The extra parameter contains the status.\n",
     1},
    {0xf20400, "RAGSOCK_ERR_ENV",
     "An environment variable of the socket layer is missing or wrong.\n"
     "The extra parameter contains the status.\n",
     1},
    {0xf20500, "RAGSOCK_ERR_SYNC",
     "The socket layer lost its synchronization.\n"
     "The extra parameter contains the state.\n",
     1},
    {0xf20600, " RAGSOCK_ERR_RECOVERY_FAILED",
     "Recovery of the socket layer failed.\n"
     "The extra parameter contains the status.\n",
     0x40},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_ragsock_error = {"RAGSOCK", 0xff, ragsock_error_rows};

static const errOse_error ramdump_error_rows[] = {
    {0x8e0005, "OSE_RAMDUMP_EBAD_RAMDUMP_AREA_CONFIGURATION",
     "The RAM dump area is badly configured.\n"
     "The extra parameter contains the address of the area.\n",
     1},
    {0x8e0006, "OSE_RAMDUMP_ERAMDUMP_CONFIGURATION_DENIED",
     "The RAM dump configuration was refused.\n"
     "The extra parameter contains the status.\n",
     1},
    {0x8e0007, "OSE_RAMDUMP_EWORK_AREA_TOO_SMALL",
     "The RAM dump work area is too small.\n"
     "The extra parameter contains the size needed.\n",
     1},
    {0x8e0008, "OSE_RAMDUMP_ENOT_ENOUGH_HEAP_MEMORY",
     "There is not enough heap memory for the RAM dump.\n",
     0},
    {0x8e000a, "OSE_RAMDUMP_EERROR_READING_DUMPS_SYSPARAM",
     "The system parameter for the number of dumps could not be read.\n",
     0},
    {0x8e000b, "OSE_RAMDUMP_EERROR_READING_HEAP_SYSPARAM",
     "The system parameter for the RAM dump heap could not be read.\n",
     0},
    {0x8e000c, "OSE_RAMDUMP_EUNABLE_TO_INIT_RAMDUMP_HEAP",
     "The RAM dump heap could not be initialized.\n",
     0},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_ramdump_error = {"RAMDUMP", 0xff, ramdump_error_rows};

static const errOse_error spliteth_error_rows[] = {
    {0x560001, "OSE_SPLITETH_ETMO_BUT_NOT_SELECTING",
     "A timeout arrived while the split Ethernet driver was not\n"
     "selecting.\n",
     0},
    {0x560002, "OSE_SPLITETH_EINTERNAL_ERROR",
     "The split Ethernet driver met an internal error.\n",
     0},
    {0x560010, "OSE_SPLITETH_EBAD_CLIENT_SIGNAL",
     "A client sent a signal that the split Ethernet driver does not know.\n",
     0},
    {0x560020, "OSE_SPLITETH_EBAD_CLIENT_STATE",
     "A client request came in a state where it is not allowed.\n",
     0},
    {0x560100, "OSE_SPLITETH_EDCHANDLEEX_CALLED",
     "The exception handler of the driver was called.\n"
     "The extra parameter contains the exception code.\n",
     1},
    {0x560200, "OSE_SPLITETH_EDDCALL_FAILED",
     "A call to the device driver failed.\n"
     "The extra parameter contains the status.\n",
     1},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_spliteth_error = {"SPLITETH", 0xff00, spliteth_error_rows};

static const errOse_error pm_error_rows[] = {
    {0xe00002, "PM_EGMM_LOST",
     "The program manager lost contact with the global memory manager.\n",
     0},
    {0xe00003, "PM_EBIOS_INSTALL_FAILED",
     "The program manager could not install its BIOS entry.\n",
     0},
    {0xe00004, "PM_EINTERNAL",
     "The program manager met an internal error.\n"
     "The extra parameter contains an undocumented subcode.\n",
     1},
    {0xe00006, " PM_EPERSISTENCY_FAILURE",
     "The program manager could not keep its persistent data.\n"
     "The extra parameter contains the status.\n",
     1},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_pm_error = {"PROGRAM MANAGER", 0xfff, pm_error_rows};

static const errOse_error rtl_error_rows[] = {
    {0xe01003, "RTL_EPM_CONNECTION_DENIED",
     "The run time loader was refused a connection to the program\n"
     "manager. The extra parameter contains the status.\n",
     1},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_rtl_error = {"RTL", 0xfffff, rtl_error_rows};

static const errOse_error dda_error_rows[] = {
    {0x2200000, "OSE_DDA_EILLEGAL_DRM_STATE",
     "The device resource manager was found in an illegal state.\n",
     4},
    {0x2200001, "OSE_DDA_EINT_HANDLING_ERROR",
     "An error occurred while an interrupt was handled.\n",
     4},
    {0x2200002, "OSE_DDA_EDRIVER_API_ERROR",
     "Illegal state detected when running in the driver client's context. \n"
     "The extra parameter contains a pointer to an info string. ",
     4},
    {0x2200003, "OSE_DDA_EINT_NOT_ATTACHED",
     "An interrupt occurred that no driver is attached to.\n"
     "The extra parameter contains the vector.\n",
     1},
    {0, nullptr, nullptr, 0},
};
const errOse_table errOse_dda_error = {"DDA", 0xffff, dda_error_rows};

const errOse_component errOse[] = {
    {0x0, 0xff0000, &errOse_kernel_err, 0},  // 0 OSE KERNEL
    {0x880000, 0xff0000, &errOse_bsp_error, 0},  // 1 BSP
    {0x900000, 0xff0000, &errOse_efsCommon_error, 0},  // 2 EFS
    {0x910000, 0xff0000, &errOse_efsFlib_error, 0},  // 3 EFS FLIB
    {0x920000, 0xff0000, &errOse_efsSerdd_error, 0},  // 4 EFS SERDD
    {0x930000, 0xff0000, &errOse_efsShell_error, 0},  // 5 EFS SHELL
    {0x940000, 0xff0000, &errOse_efsStartEfs_error, 0},  // 6 EFS STARTEFS
    {0x820000, 0xff0000, &errOse_heap_error, 0},  // 7 HEAP
    {0xc30000, 0xff0000, &errOse_ntp_error, 0},  // 8 OSE NTP
    {0x8d0000, 0xff0000, &errOse_ns_error, 0},  // 9 OSE NS
    {0x740000, 0xff0000, &errOse_ospf_error, 0},  // 10 OSPF
    {0x610000, 0xff0000, &errOse_otl_error, 0},  // 11 OTL
    {0x8b0000, 0xff0000, &errOse_rtc_error, 0},  // 12 RTC
    {0x8f0000, 0xff0000, &errOse_sdm_error, 0},  // 13 SDM
    {0x200, 0xffff00, &errOse_fm_error, 0},  // 14 EFS Format Manager
    {0xf20000, 0xff0000, &errOse_ragsock_error, 0},  // 15 RAGSOCK
    {0x8e0000, 0xff0000, &errOse_ramdump_error, 0},  // 16 RAMDUMP
    {0x560000, 0xff0000, &errOse_spliteth_error, 0},  // 17 SPLITETH
    {0xe00000, 0xf00000, &errOse_pm_error, 0},  // 18 PROGRAM MANAGER
    {0xe01000, 0xfff000, &errOse_rtl_error, 0},  // 19 RTL
    {0x2200000, 0xfff0000, &errOse_dda_error, 0},  // 20 DDA
    {ERROSE_END_KEY, 0, nullptr, 0},
};
