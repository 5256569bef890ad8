/* libcmpnt_db: the component database library of the software-upgrade system.
 *
 * This is the whole boundary of the library, for C99 and C++. What is not declared here may change
 * without notice.
 *
 * Conventions
 *   Results     int32_t, 0 for success and -1 for failure unless the function says otherwise.
 *               A predicate answers 1 or 0. On failure the out-parameters keep what they held,
 *               unless the function says otherwise.
 *   Failures    Every failure with a message is logged where it is met: always as one line in the
 *               calling thread's trace file, of kind "error" for all but a few that callers expect,
 *               and to the system log when the debug level asks for it (cmpnt_set_level). Nothing
 *               throws, aborts or exits.
 *   Pointers    May be null only where a function says what null does. Most functions refuse null
 *               with a message and a failure value.
 *   Texts       NUL-terminated bytes. Sizes and lengths are in bytes; a buffer's size counts its
 *               terminator. A text that does not fit its field is cut and stays terminated.
 *   Memory      The library allocates with malloc and calloc. A block that a function hands to its
 *               caller is freed by the caller with cmpnt_free_pointer, or the recycle function that
 *               the description names.
 *   Threads     Logging may be called from any thread. Everything else works on process-wide state
 *               (the lists, the role, the standard output that a command run redirects, the
 *               database lock, which excludes processes and not threads): call it from one thread
 *               at a time. A child that a host of several threads forks must exec before it calls
 *               the library.
 *   Platform    The library imports the device platform's functions; the program that links it
 *               brings them along (<cmpnt_db/platform.h> is their contract, platform/platform.h in
 *               the source tree; examples/host is a program to copy).
 */
#ifndef LIBCMPNT_DB_H
#define LIBCMPNT_DB_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#if defined(__GNUC__)
#define CMPNT_API __attribute__((visibility("default")))
#define CMPNT_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define CMPNT_API
#define CMPNT_PRINTF(text, first)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The version that a program is compiled against. Within a major version, which is the number in the
 * library's file name, functions and the layout of records stay as they are. */
#define CMPNT_DB_VERSION_MAJOR 1
#define CMPNT_DB_VERSION_MINOR 0
#define CMPNT_DB_VERSION_PATCH 0
#define CMPNT_DB_VERSION "1.0.0"

/* The version of the library that is loaded, as CMPNT_DB_VERSION; a constant. Any thread. */
CMPNT_API const char *cmpnt_db_version(void);

/* Sizes of fixed buffers, in bytes, terminators included. */
enum {
    CMPNT_PATH_SIZE = 260,
    CMPNT_LINE_SIZE = 1024,
    CMPNT_VERSION_SIZE = 32,
    CMPNT_PATCH_NAME_SIZE = 80, /* names of patches and packages in records */
    CMPNT_FILE_LIST_MAX = 300   /* names in a file list or communication list record */
};

/* ==== Common runtime: logging and debug trace ============================================== */

/* Bits of the debug level. A message goes to the system log when all bits of its channel's mask are
 * set: 0x3 for library errors, 0x7 for client errors, 0xB for server errors and so on. */
enum {
    CMPNT_LEVEL_TRACE = 0x1,
    CMPNT_LEVEL_ERROR = 0x2,
    CMPNT_LEVEL_MAJOR = 0x4, /* with bit 0 or 1: the client side */
    CMPNT_LEVEL_SERVER = 0x8
};

/* The debug level; 0 at load: nothing reaches the system log. Read it freely, set it with
 * cmpnt_set_level. While it is not 0 command output stays on the terminal (see
 * cmpnt_install_log_redirect), so do not change it while a command runs. */
extern CMPNT_API uint32_t g_cmpnt_dbg_level;

/* Sets the debug level and traces the change. Returns what the trace writer returns: 0. */
CMPNT_API int32_t cmpnt_set_level(uint32_t level);

/* Appends one line to the calling thread's trace file "/var/cache/opkg/debug/.NAME.log", NAME being
 * the thread's name:
 *     [2024-03-01 10:15:02-004211, KIND, FUNCTION-LINE]the formatted message
 * The message brings its own newline; the whole line is cut at 1023 bytes. The line is synced to the
 * disk before the call returns. A file of 256 KiB or more is first renamed to "..._bak". Whatever
 * fails loses this one line and nothing else. Returns 0; errno is unchanged. Any thread. */
CMPNT_API int32_t cmpnt_write_debug_log(const char *kind, const char *function, int32_t line,
                                        const char *format, ...) CMPNT_PRINTF(4, 5);

/* Writes the local wall-clock time into dst, at most size bytes with the terminator. mode 0:
 * "2024-03-01 10:15:02" (20 bytes); mode 1: the same with "-004211", the microseconds (27 bytes).
 * dst stays as it is for another mode, a null dst, a size below 1 or a clock that fails. */
CMPNT_API void cmppnt_get_time(char *dst, int32_t size, int32_t mode);

/* Renames path to path + "_bak", over an older backup. -1 when the rename fails or the new path
 * needs more than 256 bytes. */
CMPNT_API int32_t cmpnt_log_file_backup(const char *path);

/* Removes every trace file of the upgrade daemon, backups and the package manager's log included
 * ("/var/cache/opkg/debug/.cmpnt_upgrade*"). Returns 0. */
CMPNT_API int32_t cmpnt_debug_delete_log_file(void);

/* The word for an upgrade command number, "Unknown" for one without; a constant, never null. */
CMPNT_API const char *cmpnt_convert_cmd_to_str(int32_t cmd);

/* 1 when the progress of the command is to be printed for the operator, else 0. */
CMPNT_API uint32_t cmpnt_cmd_is_need_printf(int32_t cmd);

/* ==== Common runtime: memory, strings, paths =============================================== */

/* A zero-filled block of size bytes, or null for size 0 or when memory is out. Free it with
 * cmpnt_free_pointer or free. */
CMPNT_API void *cmpnt_malloc(uint32_t size);

/* Frees a block; null is fine. */
CMPNT_API void cmpnt_free_pointer(void *pointer);

/* Takes the address of a pointer variable of any type; frees what it points at and sets it to null.
 * A null address or a null pointer is fine. */
CMPNT_API void cmpnt_free_pointer_set_null(void *address_of_pointer);

/* Pointer arrays: count slots, each null or an owned block. A count below 1 does nothing. */
CMPNT_API void cmpnt_set_pointer_array_null(char **array, int32_t count);
CMPNT_API void cmpnt_recycle_pointer_array(char **array, int32_t count); /* frees, then nulls */

/* Stores a new block of size bytes with a copy of text (cut to fit) in array[index]; callers pass
 * the length plus one. The former pointer is overwritten, not freed. A null text leaves the slot; a
 * failed allocation leaves null in it. */
CMPNT_API int32_t cmpnt_malloc_and_memory(char **array, int32_t index, const char *text,
                                          uint32_t size);

/* Copies src_len bytes of the text src into dest, which has dest_len bytes and is zeroed first.
 * Returns 0, also when a text of exactly dest_len bytes lost its last one to the terminator. Returns
 * -1 with dest untouched for a null or a length below 1, and -1 with dest all zero for a text that
 * is too long. dest is NOT terminated when src_len equals dest_len and src is longer than that.
 * src must be terminated when it may be too long: the message shows it. The buffers must not
 * overlap. */
CMPNT_API int32_t cmpnt_memcpy(void *dest, const void *src, int32_t dest_len, int32_t src_len);

/* snprintf that answers: 0 when all of the text fitted, else -1 with the text cut. */
CMPNT_API int32_t cmpnt_snprintf(char *dest, int32_t size, const char *format, ...)
    CMPNT_PRINTF(3, 4);

/* Replaces every occurrence of old_text in the buffer text of size bytes. On failure the buffer is
 * all zero (a result too long), or as it was (null arguments, no memory, an empty result). A result
 * of exactly size bytes loses its last one and succeeds. An empty old_text occurs nowhere. */
CMPNT_API int32_t cmpnt_replace(char *text, int32_t size, const char *old_text,
                                const char *new_text);

/* Swaps the texts of two buffers; 259 bytes of a survive, each cut to the other's size. */
CMPNT_API int32_t cmpnt_exchange_str(char *a, char *b, int32_t size_a, int32_t size_b);

/* 1 when needle occurs in haystack; null arguments give 0. */
CMPNT_API int32_t cmpnt_str_is_exist(const char *haystack, const char *needle);

/* Removes entry index from an array of equally sized text buffers by moving the later texts down one
 * buffer; the last becomes empty. The pointers and the count stay (the caller lowers its count). An
 * index outside the array changes nothing and gives 0. */
CMPNT_API int32_t cmpnt_path_name_filter(char **array, int32_t count, int32_t index);

/* 1 when the first length bytes of buffer are all zero, when length is below 1, or for null. */
CMPNT_API int32_t cmpnt_name_is_null(const char *buffer, int32_t length);

/* Copies the temporary directory (TMPDIR, else "/tmp", with no slash added) into dest, which is
 * zeroed first, and returns dest; null with dest untouched when it does not fit. */
CMPNT_API char *cmpnt_get_tmpdir(char *dest, int32_t size);

/* The temporary directory followed directly by name, which brings its leading slash. -1 when it does
 * not fit: dest then holds the directory alone, or what it held when not even that fitted. */
CMPNT_API int32_t cmpnt_get_tmp_strcat_path(const char *name, char *dest, int32_t size);

/* Files of one directory. Zero it before its first use. */
typedef struct file_name_list {
    int32_t count;                    /* names held */
    uint32_t total_size;              /* of the listed files, in bytes */
    char *names[CMPNT_FILE_LIST_MAX]; /* owned */
    char *first_text;                 /* owned or null */
    char *second_text;                /* owned or null */
} file_name_list;

/* What client and server tell each other of a list of files. */
typedef struct cmpnt_comm_info {
    int32_t count;
    char *names[CMPNT_FILE_LIST_MAX]; /* owned */
    char *first_text;                 /* owned or null */
    char *second_text;                /* owned or null */
} cmpnt_comm_info;

/* The first count names (at most 300) and the two texts of a record. The set functions make them
 * null without freeing. The recycle functions free them; cmpnt_recycle_file_info_pointer leaves
 * second_text dangling, so call its set function before you recycle the record again. */
CMPNT_API void cmpnt_set_file_info_pointer_null(file_name_list *record, int32_t count);
CMPNT_API void cmpnt_recycle_file_info_pointer(file_name_list *record, int32_t count);
CMPNT_API void cmpnt_set_comm_info_pointer_null(cmpnt_comm_info *record, int32_t count);
CMPNT_API void cmpnt_recycle_comm_info_pointer(cmpnt_comm_info *record, int32_t count);

/* Frees the record's first `count` names; the count stays. Null is fine. */
CMPNT_API void cmpnt_free_file_name(file_name_list *record);

/* ==== Common runtime: files ================================================================ */

CMPNT_API int32_t cmpnt_close(int32_t fd);    /* a negative fd gives -1 without a call */
CMPNT_API int32_t cmpnt_fclose(FILE *stream); /* null gives -1 */
CMPNT_API int32_t cmpnt_sync(void);           /* flushes all file systems; 0 */
CMPNT_API int32_t cmpnt_fsync(int32_t fd);    /* flushes one file */

/* Adds status flags (O_NONBLOCK ...) to the stream's descriptor. 0 also when adding them fails. */
CMPNT_API int32_t cmpnt_set_file_nonblock(FILE *stream, uint32_t flags);

/* Appends text (at most 1023 bytes with its newline) and a newline to the file, creates it (mode
 * 0755) and its directories when missing, and syncs it. The path has a "/": without one it is made a
 * directory. Only a null argument and a failed open give -1. */
CMPNT_API int32_t cmpnt_write_to_file(const char *text, const char *path);

/* Size of a file: unit 1 in kilobytes, rounded down; any other unit in bytes. (uint32_t)-1 for null,
 * a missing or an unreadable file. */
CMPNT_API uint32_t cmpnt_get_file_size(const char *path, int32_t unit);

/* 0 when the directory's file system has room for the file and extra_kbytes more, else -1. */
CMPNT_API int32_t cmpnt_check_file_space_is_enough(const char *directory, const char *file,
                                                   int32_t extra_kbytes);

/* Marker files in the temporary directory; name brings its leading slash. Names reach a shell
 * unquoted in cmpnt_rm_file, which removes directories too, refuses the root with -1, and does not
 * look at how the removal went. */
CMPNT_API int32_t cmpnt_touch_tmp_file(const char *name);
CMPNT_API int32_t cmpnt_rm_file(const char *name);

/* Reads the first line of a marker file into value, which is zeroed first. */
CMPNT_API int32_t cmpnt_get_info_from_tmp_file(const char *name, char *value, int32_t size);

/* ==== Common runtime: transfer ============================================================= */

/* What a host keeps of its connections. */
typedef struct cmpnt_communication {
    int32_t host_words[2];
    int32_t fds[3]; /* -1: not open */
} cmpnt_communication;

CMPNT_API void cmpnt_init_communication_struct(cmpnt_communication *record); /* zeros, fds -1 */

/* Writes all length bytes to a descriptor. 0, also when a write wrote nothing at all, which leaves
 * the rest unsent; -1 for null, a failed write, or the seventh write of this call that was
 * interrupted or would have blocked: it waits a second after each of the six before. Ignore SIGPIPE:
 * a peer that is gone raises it. Any thread. */
CMPNT_API int32_t send_data(int32_t fd, const void *data, uint32_t length);

/* Reads one record of length bytes into buffer, which is zeroed first. It is expected in one read, or
 * in reads of more than 8192 bytes each: after a shorter one the call returns 0 with what there is,
 * the rest of the buffer zero. -1 for null, a failed read or a peer that closed; -3 for the third
 * read of this call that was interrupted or would have blocked, a second after each of the two
 * before. The buffer then holds what had come. 0 at once for a length below 1. Any thread. */
CMPNT_API int32_t recv_data(int32_t fd, void *buffer, int32_t length);

/* Sets descriptor status flags with fcntl. Returns the current flags when all were set already, else
 * what F_SETFL returned; a failure is logged and returns 0. */
CMPNT_API int32_t cmpnt_set_recv_flag(int32_t fd, uint32_t flags);

/* ==== Common runtime: shell commands ======================================================= */

/* Each runs "command arguments" through the shell while standard output and error go to the capture
 * file (see cmpnt_install_log_redirect), and waits for it. 0 when the command exits with status 0,
 * else -1. Arguments reach the shell unquoted. Output is read and thrown away, but for two commands:
 * that of "opkg whatdepends..." is appended to "/var/cache/opkg/.cmd_redirect" and that of "opkg
 * install..." to "/var/cache/opkg/debug/.cmpnt_upgrade_opkg.log". The host keeps descriptors 0 to 2
 * open and SIGCHLD at its default: while it is ignored every command counts as failed. */
CMPNT_API int32_t cmpnt_popen_cmd_run(const char *command, const char *arguments); /* ( -> \( */
CMPNT_API int32_t cmpnt_popen_cmd_run_not_deal_brk(const char *command, const char *arguments);
CMPNT_API int32_t cmpnt_system_cmd_run(const char *command, const char *arguments);

/* "cp -rf" and "mv" of an existing file. The two paths together are cut at 258 bytes. */
CMPNT_API int32_t cmpnt_copy_file_by_popen(const char *source, const char *destination);
CMPNT_API int32_t cmpnt_rename_file_by_popen(const char *source, const char *destination);

/* ==== Common runtime: device identity ====================================================== */

enum {
    CMPNT_ROLE_UNKNOWN = 0,
    CMPNT_ROLE_BOX = 1,
    CMPNT_ROLE_MANAGEMENT_BOARD = 2,
    CMPNT_ROLE_CARD = 3
};

/* Who we are. The library reads and writes the role alone; the other words are the host's. */
typedef struct cmpnt_dev_info {
    int32_t host_head[3];
    int32_t role;
    int32_t host_tail[12];
} cmpnt_dev_info;
extern CMPNT_API cmpnt_dev_info g_dev_info;

/* Subscribes to the device identity record of the management data store `store` and reads it once;
 * both set g_dev_info.role, later changes on the platform's notification thread. The first known
 * role stays until a record without a known node type resets it. Returns 0 or the platform's own
 * non-zero code. */
CMPNT_API int32_t cmpnt_get_dp_lib_my_info(uint32_t store);

/* Card identifiers: bits 0-7 the device, 8-15 the slot, 16-23 the sub-slot. */
CMPNT_API uint32_t cmpnt_get_devid_by_card_id(uint32_t card_id);
CMPNT_API uint32_t cmpnt_get_slotid_by_card_id(uint32_t card_id);
CMPNT_API uint32_t cmpnt_get_sslotid_by_card_id(uint32_t card_id);
CMPNT_API void cmpnt_combine_card_id(uint32_t *card_id, uint32_t dev_id, uint32_t slot_id,
                                     uint32_t sslot_id);

/* Predicates over a role and a flag that the caller brings; g_dev_info is not read. */
CMPNT_API int32_t cmpnt_device_is_master_mgnt(int32_t role);
CMPNT_API int32_t cmpnt_device_is_backup_mgnt(int32_t role, int32_t flag);
CMPNT_API int32_t cmpnt_device_is_slot_card(int32_t role, int32_t flag);

/* Bits of a word, each that the mask has. Null changes nothing. */
CMPNT_API void cmpnt_clear_bit(uint32_t *word, uint32_t mask);
CMPNT_API void cmpnt_set_bit(uint32_t *word, uint32_t mask);
CMPNT_API int32_t cmpnt_bit_is_change(uint32_t value, uint32_t mask); /* 1: a mask bit is missing */

/* ==== Common runtime: process lock, timers, install queue ================================== */

/* Takes the single-instance lock TMPDIR + lock_name. Returns a descriptor that holds the lock until
 * it is closed or the process ends; 0 when another process holds it; -1 on failure. It is a POSIX
 * record lock: closing any descriptor of that file in this process drops it. */
CMPNT_API int32_t cmpnt_process_is_running(const char *lock_name);

/* What a timer is added to. */
typedef struct cmpnt_timer_context {
    void *owner;  /* the host's */
    void *master; /* handle of the host's event thread */
} cmpnt_timer_context;

/* A timer on the host's event thread: vx_thread_add_timer(master, first, third, second). */
CMPNT_API int32_t cmpnt_common_add_timer(const cmpnt_timer_context *context, uintptr_t first,
                                         uintptr_t second, uintptr_t third);

/* Splits the first 1023 bytes of text at each of the separator characters into trimmed names, newly
 * allocated in names[0..*count-1]; neighbouring separators give empty names. Returns 0, or -1 when
 * max names were stored (also when that was all there was) or memory ran out; null arguments leave a
 * count of 0. In every outcome the names stored belong to the caller, who frees them with cmpnt_recycle_pointer_array. */
CMPNT_API int32_t cmpnt_detach_install_queue(const char *text, const char *separators, char **names,
                                             int32_t *count, int32_t max);

/* Replaces the file (its path reaches a shell unquoted) by the text and a newline. */
CMPNT_API int32_t cmpnt_write_auto_sync_config(const char *config, const char *path);

/* Lists the package files that have been added, in the download and backup directories; mode 2
 * to the operator's terminal, mode 3 to the system log, any other mode shows nothing. */
CMPNT_API void cmpnt_show_all_add_file(uint32_t mode);

/* The platform's verification switch: non-zero when verification is on. The four values are handed on
 * as they are, pointers and integers alike. */
CMPNT_API int32_t cmpnt_safe_verify_enable(uintptr_t first, uintptr_t second, uintptr_t third,
                                           uintptr_t fourth);

/* ==== Upgrade lists ======================================================================== */

/* A list head is a node's link: a circular, doubly linked list with the head as its sentinel. */
typedef struct cmpnt_list_head {
    struct cmpnt_list_head *next;
    struct cmpnt_list_head *prev;
} cmpnt_list_head;

/* Empty at load. */
extern CMPNT_API cmpnt_list_head cmpnt_upgrade_list; /* of cmpnt_upgrade_node */
extern CMPNT_API cmpnt_list_head cmpnt_hp_list;      /* of cmpnt_upgrade_node */
extern CMPNT_API cmpnt_list_head cmpnt_smu_list;     /* of cmpnt_smu_node; filled by the host */
extern CMPNT_API cmpnt_list_head hash_verify_list;   /* of hash_verify_list_t */
extern CMPNT_API cmpnt_list_head auto_sync_list;     /* of cmpnt_upgrade_node */
extern CMPNT_API cmpnt_list_head app_sync_list;      /* of cmpnt_upgrade_node; filled by the host */

/* The lists that a list selector names. */
enum { CMPNT_UPGRADE_LIST = 0, CMPNT_HP_LIST = 1 };

/* One upgrade record in memory: a row of pkg_upgrade_table or auto_sync_table, its texts cut to these
 * widths, its state as a word. */
typedef struct cmpnt_upgrade_value {
    int32_t card_id; /* of a single patch: its SMU id */
    int32_t op_flag; /* kind of SMU: bit 0 cold, bit 3 application, bit 5 hot patch */
    char patch_name[80];
    char state_name[25]; /* "active", "running", "installed" ... */
    char description[256];
    char patch_ver[32];
    char patch_id[80];
    char effective_time[32];
    char last_patch[80];
    int32_t patch_size;
    int32_t patch_order;
    int32_t patch_type; /* 1: a single patch */
    int32_t cur_flag;
    int32_t unused_word; /* always 0 */
    char pkg_name[80];
    char cur_version[32];
    char last_version[32];
    char unused_text[256]; /* always empty */
    char cur_pkg_path[260];
    char pkg_state_name[25]; /* state_name once more */
    char hotpatch_file[80];
    char hotpatch_target[80]; /* names joined by ";" */
    char hotpatch_target_path[260];
    char hotpatch_target_pkg_path[260];
    char hotpatch_target_md5[192];
    char hotpatch_target_strip_md5[192];
} cmpnt_upgrade_value;

/* A node owns its record. Nodes that a host adds itself come from malloc or cmpnt_malloc. */
typedef struct cmpnt_upgrade_node {
    cmpnt_upgrade_value value;
    cmpnt_list_head link;
} cmpnt_upgrade_node;

/* The node that a link belongs to. */
#define CMPNT_UPGRADE_NODE(link_pointer)                                                           \
    ((cmpnt_upgrade_node *)(void *)((char *)(link_pointer)-offsetof(cmpnt_upgrade_node, link)))

/* What the SMU list holds of an SMU: an upgrade record from op_flag to patch_type. */
typedef struct cmpnt_smu_value {
    int32_t op_flag;
    char patch_name[80];
    char state_name[25];
    char description[256];
    char patch_ver[32];
    char patch_id[80];
    char effective_time[32];
    char last_patch[80];
    int32_t patch_size;
    int32_t patch_order;
    int32_t patch_type; /* 1: a single patch */
} cmpnt_smu_value;

/* Made, linked and freed by the host. */
typedef struct cmpnt_smu_node {
    cmpnt_smu_value value;
    cmpnt_list_head link;
} cmpnt_smu_node;

/* The node that a link of the SMU list belongs to. */
#define CMPNT_SMU_NODE(link_pointer)                                                               \
    ((cmpnt_smu_node *)(void *)((char *)(link_pointer)-offsetof(cmpnt_smu_node, link)))

/* Make a head empty, whatever it held; nodes are not freed (recycle first). */
CMPNT_API void cmpnt_upgrade_list_init(void);
CMPNT_API void cmpnt_smu_list_init(void);
CMPNT_API void cmpnt_hp_list_init(void);
CMPNT_API void cmpnt_hash_value_list_init(void);
CMPNT_API void cmpnt_client_list_init(void); /* upgrade, SMU, hot-patch and hash-value list */
CMPNT_API void cmpnt_begin_list_init(void);  /* upgrade, hash-value and hot-patch list */

/* Append a copy of the record; it stays the caller's. -1 for null or without memory. A list selector
 * other than 0 or 1 appends nothing and gives 0. */
CMPNT_API int32_t insert_cmpnt_upgrade_db_to_list(const cmpnt_upgrade_value *record, int32_t list);
/* ... unless a node has the same patch_name and pkg_name, whatever its version; then 0. */
CMPNT_API int32_t cmpnt_add_upgrade_value_to_list(const cmpnt_upgrade_value *record, int32_t list);
/* ... to the upgrade list, unless the record's state is "installed"; then 0. */
CMPNT_API int32_t cmpnt_add_to_list_by_pkg_version(const cmpnt_upgrade_value *record);
/* ... to the upgrade list, unless a node has the same pkg_name; then 0. */
CMPNT_API int32_t cmpnt_add_to_upgrade_list_by_pkg_name(const cmpnt_upgrade_value *record);

/* Unlink and free every node of the selected list. */
CMPNT_API void recycle_upgrade_list(int32_t list);
CMPNT_API void cmpnt_recycle_upgrade_list(int32_t list);

/* Unlinks and frees every node of the upgrade list that has this patch_name, pkg_name and
 * cur_version. The texts may lie in a node of the list. */
CMPNT_API void del_pkg_name_from_upgrade_list(const char *patch_name, const char *pkg_name,
                                              const char *version);

/* Copies the newest record in the given state, over all packages of the upgrade list, into out and
 * sets *found (may be null) to 1. Of equal versions the first in the list wins. Without a match out
 * and *found stay. 0, or -1 for null. */
CMPNT_API int32_t cmpnt_get_max_version_by_state(cmpnt_upgrade_value *out, const char *state,
                                                 int32_t *found);

/* Copies the first record of the upgrade list with this state and a package name into out (zeroed
 * first); app_only 1 looks at application SMUs alone. 1 when found, else 0. */
CMPNT_API int32_t cmpnt_look_target_state_form_list(cmpnt_upgrade_value *out, const char *state,
                                                    int32_t app_only);

/* 1 when a node of the upgrade list has this patch_name, else 0. */
CMPNT_API int32_t cmpnt_is_exist_current_upgrade_list(const char *patch_name);

/* How many records of the selected list are in the state (null: in any); app_only 1 counts
 * application SMUs alone. */
CMPNT_API int32_t cmpnt_get_upgrade_list_count(const char *state, int32_t app_only, int32_t list);

/* Copies the package's base version from package_info_table into dst, 32 bytes; empty, and still 0,
 * when the table does not know the package. -1 for null or when the table cannot be read. */
CMPNT_API int32_t cmpnt_get_base_version_by_pkg_name(const char *pkg_name, char *dst);

/* When "/var/cache/opkg/backup/NAME_VERSION.ipk" exists: stores a new copy of that path in
 * paths[index] (null without memory) and returns 1; the caller raises its index. Else 0. */
CMPNT_API int32_t cmpnt_pkg_is_base_version(char **paths, int32_t index, const char *pkg_name,
                                            const char *version);

/* Chooses what to put in the place of a package whose version is taken away, over the records loaded
 * into the upgrade list:
 *    0  the file in backup_paths[*backup_index]: the base package when one record alone is in force,
 *       else the newest "active" or "running" one that remains (the path is empty when none does);
 *       *backup_index is raised
 *    4  no file: the package keeps its base version, or its name was stored in
 *       remove_names[*remove_index], which is raised, to be removed afterwards
 *   -1  null name or version, database or memory failure; a buffer may lie in the slot at the
 *       unraised *backup_index
 * The node of the version taken away leaves the list, so ask once a package. The arrays must have
 * room; free both, all slots, with cmpnt_recycle_pointer_array. */
enum { CMPNT_TARGET_STORED = 0, CMPNT_TARGET_NO_FILE = 4 };
CMPNT_API int32_t cmpnt_get_target_pkg_path(const char *pkg_name, const char *version,
                                            char **backup_paths, int32_t *backup_index,
                                            char **remove_names, int32_t *remove_index);

/* ==== Upgrade lists: SMUs and single patches =============================================== */

/* Predicates over the SMU type word, op_flag of a record: 1 or 0, several may hold. */
CMPNT_API int32_t cmpnt_smu_is_cold(int32_t op_flag);
CMPNT_API int32_t cmpnt_smu_is_app(int32_t op_flag);
CMPNT_API int32_t cmpnt_smu_is_hp(int32_t op_flag);

/* Append a copy of the record to the upgrade list, unless a node has the same patch_name; then 0.
 * -1 for null or without memory. */
CMPNT_API int32_t cmpnt_add_to_list_by_smu(const cmpnt_upgrade_value *record);
/* ... if it is a single patch, and unless it has an SMU id (card_id) above 0 and a node has the same
 * id and patch_name; in both cases 0. */
CMPNT_API int32_t cmpnt_add_to_list_by_single(const cmpnt_upgrade_value *record);

/* Removes the directory of every record in the upgrade list that is no application SMU: its
 * cur_pkg_path up to the last "/", whatever lies there ("/data/x.bin" removes /data). A path without
 * "/" is removed itself, relative to the working directory; the root directory never is. The list
 * stays. */
CMPNT_API void cmpnt_delete_not_install_patch(void);

/* The lists that a patch list kind names; any other kind is the upgrade list too. */
enum { CMPNT_SINGLES_IN_FORCE = 1, CMPNT_SINGLES_OF_SMU_LIST = 2, CMPNT_SINGLES_OF_ANY_STATE = 3 };

/* Stores how many single patches the kind's list holds. */
CMPNT_API void cmpnt_get_single_patch_num(int32_t *count, int32_t kind);

/* 1 when the upgrade list holds a single patch in this state, else 0. */
CMPNT_API int32_t cmpnt_is_target_state_single_patch(const char *state);

/* Copies the index-th single patch of the kind's list, counted from 1, into out; out is zeroed first
 * and stays zero when there are fewer. From the SMU list the fields op_flag to patch_type are copied,
 * the others stay zero. */
CMPNT_API void cmpnt_get_smu_version_by_index(cmpnt_upgrade_value *out, int32_t index,
                                              int32_t kind);

/* Copies the newer by patch_ver of the kind's single patches, of which there are one or two, into
 * out, which is zeroed first. Kind 1 takes it only in a state in force; a kind outside 1 to 3 takes
 * none. 0 also when out stays zero, for that or because there are none or more than two. -1 for null
 * or two of equal versions. */
CMPNT_API int32_t cmpnt_get_newest_single_patch(cmpnt_upgrade_value *out, int32_t kind);

/* Kinds of package files. */
enum {
    CMPNT_PKG_TYPE_IMAGE = 1,       /* .bin; its destination ends in ".single" */
    CMPNT_PKG_TYPE_MULTIPLE = 2,    /* ".multiple"; no file name has this kind */
    CMPNT_PKG_TYPE_DEB = 3,         /* .deb; ".new" */
    CMPNT_PKG_TYPE_UNSUPPORTED = 4, /* any other suffix */
    CMPNT_PKG_TYPE_SIDE_FILE = 5    /* .sign, .hash */
};

/* Writes base and the suffix of the destination of a package type into dst, 260 bytes, zeroed first; a
 * longer path is cut. base may be dst. -1 for null, or for another type, which leaves dst empty. */
CMPNT_API int32_t cmpnt_get_dest_path(const char *base, char *dst, uint32_t type);

/* ==== Upgrade lists: synchronisation and hot-patch guard =================================== */

enum { CMPNT_AUTO_SYNC_LIST = 0, CMPNT_APP_SYNC_LIST = 1 };

/* Appends a copy of the record to a synchronisation list; it stays the caller's, who also frees the
 * nodes of these lists (cmpnt_free_pointer). -1 for null or without memory. Another selector appends
 * nothing and gives 0. */
CMPNT_API int32_t insert_auto_sync_node_to_list(const cmpnt_upgrade_value *record, int32_t list);

/* 1 when a node of auto_sync_list has this patch_name, else 0. */
CMPNT_API int32_t smu_name_is_in_auto_sync_list(const char *name);

/* 0 when the SMU file "/data/cmpnt/opkg/download/NAME" is unpacked: its destination (see
 * cmpnt_get_dest_path) is a directory with at least one package file; else 1. Looking deletes the
 * directory's stray files, as dir_is_null does. */
CMPNT_API int32_t smu_dir_path_is_null(const char *name);

/* 0 when no hot patch of the hot-patch list has the file among its targets; -1 when one does, for
 * null, or when the 79 bytes of hotpatch_target hold 32 names or more. Frees the hot-patch list, but
 * for null: load it anew before each call. */
CMPNT_API int32_t cmpnt_traverse_list_and_check_hotpatch_target(const char *file_name);

/* ==== Integrity digests: MD5 =============================================================== */

/* State of a digest (RFC 1321), in the caller's memory. The library itself never goes through these
 * exported names, so another library's functions of the same names cannot get at its digests. */
typedef struct cmpnt_md5_context {
    uint32_t count[2]; /* message bits so far, modulo 2^64, the low word first */
    uint32_t state[4];
    uint8_t buffer[64]; /* input not yet processed */
} cmpnt_md5_context;

/* Null changes nothing. Any thread, each with its own context. */
CMPNT_API void MD5Init(cmpnt_md5_context *context);
CMPNT_API void MD5Update(cmpnt_md5_context *context, const uint8_t *input, uint32_t length);
CMPNT_API void MD5Final(uint8_t digest[16], cmpnt_md5_context *context); /* does not wipe it */
/* Their steps: one block, and words to bytes and back, little-endian. length in bytes, a multiple of
 * 4. */
CMPNT_API void MD5Transform(uint32_t state[4], const uint8_t block[64]);
CMPNT_API void MD5Encode(uint8_t *output, const uint32_t *input, uint32_t length);
CMPNT_API void MD5Decode(uint32_t *output, const uint8_t *input, uint32_t length);

/* Writes the MD5 digest of a file into digest: 33 bytes, 32 lower-case hexadecimal digits and the
 * terminator. -1 for null or a file that cannot be opened, digest as it was. A read error ends the
 * file and still gives 0; so does a read that brings less than 1024 bytes, as those of pipes may. A
 * pipe without a writer is waited for. */
CMPNT_API int32_t calculate_file_md5sum(const char *path, char *digest);

/* 0 when the file's digest is exactly the expected text (lower case, nothing around it), else -1. */
CMPNT_API int32_t file_md5_check(const char *expected, const char *path);

/* ==== Package metadata: parsing ============================================================ */

/* What the line handlers are told. set_file_param fills the first four and clears the statement. */
typedef struct cmpnt_file_param {
    int32_t mode;
    intptr_t name; /* const char *: the package (mode 3) or field (mode 5) wanted */
    intptr_t second;
    intptr_t third;
    void *statement; /* sqlite3_stmt *: six parameters, stepped once a package (mode 1) */
} cmpnt_file_param;

/* Sets mode, name, second and third, and clears the statement. Null changes nothing. */
CMPNT_API void set_file_param(cmpnt_file_param *param, int32_t mode, intptr_t name, intptr_t second,
                              intptr_t third);

/* Modes of cmpnt_parse_line. */
enum {
    CMPNT_PARSE_STATUS_TO_DB = 1,  /* each package of a status file through the statement */
    CMPNT_PARSE_ONE_PARAGRAPH = 2, /* the first paragraph */
    CMPNT_PARSE_FIND_PACKAGE = 3,  /* the paragraph of the package named */
    CMPNT_PARSE_BACKUP_FILES = 4,  /* back up each path that a file list names */
    CMPNT_PARSE_ONE_FIELD = 5,     /* the first line that begins with the name, into md5_sum */
    READ_PKG_INFO_FROM_CONTROL = 6 /* an SMU's or patch's control file, with Serial and Card_type */
};

/* One paragraph of a control or status file. serial and card_type are owned by whoever owns the
 * record, after a failure too: 512 bytes each, or null. */
typedef struct cmpnt_control_info {
    int32_t is_reboot;
    uint32_t installed_size;
    uint32_t installed_time;
    char package[80];
    char version[32];
    char md5_sum[64];
    char architecture[32];
    char description[256];
    char *serial;
    char *card_type;
} cmpnt_control_info;

/* Records of the product-type file (modes 1 and 2 of cmpnt_parse_config_from_file) and of the
 * history file (modes 3 and 4). */
typedef struct cmpnt_product_type {
    char type[32];
    char product[64];
} cmpnt_product_type;
typedef struct cmpnt_history {
    char time[32];
    char cmd[32];
    char patch[80];
    char msg[128];
} cmpnt_history;

/* Called with each line, without its newline: 0 go on, -4 fail, anything else stop and succeed. */
typedef int32_t (*cmpnt_line_handler)(void *record, char *line, cmpnt_file_param *param);

/* Reads the stream line by line, up to 1 MiB a line, into the handler. *line_buffer is a malloc block
 * of 1024 bytes that the reader may move as lines grow; it stays the caller's to free, and is null
 * after a failed realloc, which loses the block. The last line counts with or without a newline
 * (without one the handler's answer is not looked at). Handlers must leave *line_buffer alone. -1
 * for a read error, a longer line, a failed realloc, an answer of -4. */
CMPNT_API int32_t parse_info_from_stream(cmpnt_line_handler handler, void *record, FILE *stream,
                                         char **line_buffer, cmpnt_file_param *param);

/* Parses a control, status or file-list file into record, which is zeroed once the file is open and
 * the line buffer is there. The file must be writable. 0 also when what was looked for is not there:
 * compare the record's name, for a last paragraph without a blank line behind it stays in the record
 * whatever it is. */
CMPNT_API int32_t parse_pkg_info_from_file(cmpnt_control_info *record, const char *path,
                                           cmpnt_file_param *param);

/* The same for a product-type or history file, by the mode in param; the record, a cmpnt_product_type
 * or cmpnt_history, is not zeroed first. History records are printed (3: cli_printf, 4: system log)
 * as they end, that is at a blank line. */
CMPNT_API int32_t cmpnt_parse_config_from_file(cmpnt_file_param *param, const char *path,
                                               void *record);

/* The line handler of parse_pkg_info_from_file: record is a cmpnt_control_info. */
CMPNT_API int32_t cmpnt_parse_line(void *record, char *line, cmpnt_file_param *param);

/* Copies the value of the line "FIELD: value" into dst, trimmed, cut at size. -1, dst as it was, when
 * there is none. The key itself is not compared: ask cmpnt_is_field. */
CMPNT_API int32_t cmpnt_parse_str_field(const char *field, const char *line, char *dst,
                                        int32_t size);

/* 1 when the line's key, the trimmed text before the first separator, is exactly field. A line of 80
 * pieces or more within its first 1023 bytes is no field. */
CMPNT_API int32_t cmpnt_is_field(const char *field, const char *line, const char *separator);

CMPNT_API int32_t str_is_same(const char *a, const char *b, int32_t n); /* 1: the first n bytes */
CMPNT_API int32_t file_is_exist(const char *path); /* 1 also for a dangling link */

/* Trims white space at both ends in place; returns its argument, which may be null. */
CMPNT_API char *cmpnt_trim(char *text);

/* Reads the first line of a file, without its newline, into value (zeroed once the arguments are
 * good). An empty file gives -1, an empty first line 0. */
CMPNT_API int32_t cmpnt_get_value_from_file(char *value, int32_t size, const char *path);

/* The temporary directory followed directly by name, as cmpnt_get_tmp_strcat_path; the buffer is
 * zeroed first. */
CMPNT_API int32_t cmpnt_strcat_tmp_and_name(const char *name, char *path, int32_t size);

/* Compares two versions: a is newer, equal or older, or -1 for null. Numbers compare by value, "~"
 * sorts before the end, letters before other characters. */
enum { CMPNT_VERSION_OLDER = 2, CMPNT_VERSION_EQUAL = 3, CMPNT_VERSION_NEWER = 4 };
CMPNT_API int32_t cmpnt_version_compare(const char *a, const char *b);

/* ==== Package metadata: file system ======================================================== */

CMPNT_API int32_t is_dir(const char *path);  /* 1 also for a link to a directory */
CMPNT_API int32_t is_link(const char *path); /* null gives 0 */

/* mkdir -p, mode 0777 less the umask, for paths of up to 258 bytes. A plain file of that name passes. */
CMPNT_API int32_t cmpnt_mkdir(const char *path);

/* rm -rf of one path; links are removed, never followed, not even with slashes or "/." behind their
 * name. Removing what is not there succeeds ("file/" of a plain file is not there), and so does a
 * removal that failed halfway (it is logged); -1 for null or when the path cannot be looked at or
 * opened. */
CMPNT_API int32_t cmpnt_remove(const char *path);

/* rename and chdir of the C library, with a message for a failure. The old path must exist; a link
 * counts whatever it leads to. */
CMPNT_API int32_t cmpnt_rename(const char *old_path, const char *new_path);
CMPNT_API int32_t cmpnt_chdir(const char *path);

/* Copies a file byte for byte, syncs it and gives it mode 0777. -1, or the size of the last block
 * copied: test for -1 alone. A read error ends the copy as the end of the file does. Source and
 * destination must not be the same file: it would be emptied. */
CMPNT_API int32_t cmpnt_copy_file_by_write(const char *source, const char *destination);

/* "cp -rf" of a file or directory; the paths are double-quoted for the shell. -1 when both together
 * exceed 514 bytes. */
CMPNT_API int32_t cmpnt_cp_file(const char *source, const char *destination);

/* Cuts path in place at its last "/": "/a/b" leaves "/a", "/a" leaves "". Without "/" nothing
 * changes and -1 comes back; the result carries no other meaning. */
CMPNT_API int32_t get_path_exclude_file_name(char *path);

/* Creates an empty file (mode 0755) with its directories; an existing one is left alone. */
CMPNT_API int32_t cmpnt_touch_file(const char *path);

/* While a command runs, standard output and error go to "/var/cache/opkg/.opkg_redirect", unless
 * the debug level is not 0. redirect fills both copies (-1: not saved; a stdout already redirected
 * stays so when stderr fails); restore puts them back and closes them, -1 only when stderr could not
 * be put back. */
CMPNT_API int32_t cmpnt_install_log_redirect(int32_t *saved_stdout, int32_t *saved_stderr);
CMPNT_API int32_t cmpnt_install_log_restore(int32_t saved_stdout, int32_t saved_stderr);
/* Their steps: one descriptor to the capture file, returning a copy of the former one, and back, which
 * closes the copy (the two must differ). */
CMPNT_API int32_t cmpnt_std_redirect_to_file(int32_t fd);
CMPNT_API int32_t cmpnt_revert_std(int32_t saved_fd, int32_t target_fd);

/* The node's TIPC instance number from "/tmp/addr/.node_addr", or -1. */
CMPNT_API int32_t cmpnt_get_local_tipc_instance(void);

/* Kilobytes that an unprivileged user may still write to the path's file system, modulo 2^32; syncs
 * all file systems first. 0 when the block size is unknown, (uint32_t)-1 on failure. */
CMPNT_API uint32_t cmpnt_get_available_kbytes(const char *path);

/* 0 when the path's file system has that much room (compared as signed numbers), else -1. */
CMPNT_API int32_t cmpnt_check_reserve_space_is_enough(const char *path, int32_t need_kbytes);

CMPNT_API int32_t cmpnt_tmp_file_is_exist(const char *name); /* 1: TMPDIR + name exists */

/* ==== Package metadata: package files ====================================================== */

CMPNT_API int32_t str_is_empty(const char *text); /* 1: no byte; text is not null */

/* Copies the suffix of a file name, from its last "." on, into suffix, which has size bytes and is
 * zeroed first; a suffix of exactly size bytes loses its last one. -1 for null, no ".", nothing
 * behind it, or a longer suffix. The whole text counts: "/d.x/f" has the suffix ".x/f". */
CMPNT_API int32_t get_file_type(const char *file_name, char *suffix, int32_t size);

/* Tells the kind of a package file by its suffix: 0 and the kind for ".bin" and ".deb", -1 and the
 * kind for others, -1 with *type as it was without a suffix. Case counts. */
CMPNT_API int32_t cmpnt_file_type_check(const char *file_name, uint32_t *type);

/* Adds the paths of the package files of a directory (".bin", ".deb"; links too, never followed) to
 * record, and their sizes. Files that are neither package nor side files (".sign", ".hash") are
 * DELETED; sub-directories stay and are not entered. Zero the record before its first use; free it
 * with cmpnt_free_file_name. -1 for null or a directory that cannot be opened, record as it was; and
 * for an entry that cannot be examined (its path may have 259 bytes), one of any kind but a directory
 * when 300 names are held, or no memory: the names are then freed and the count stays, so zero the
 * record before it is used again; what was deleted stays deleted. */
CMPNT_API int32_t cmpnt_traverse_folder(const char *path, file_name_list *record);

/* What cmpnt_traverse_folder finds in a directory; stray files are deleted all the same. */
enum {
    CMPNT_DIR_NULL_PATH = 0,
    CMPNT_DIR_FAILED = 1,
    CMPNT_DIR_NO_PACKAGE = 2,
    CMPNT_DIR_HAS_PACKAGE = 3
};
CMPNT_API uint32_t dir_is_null(const char *path);

/* Reads the control file of an SMU or patch; record is zeroed as by parse_pkg_info_from_file, and its
 * serial and card_type are the caller's to free. */
CMPNT_API int32_t cmpnt_get_pkg_info_from_control(cmpnt_control_info *record, const char *path);

/* Writes the version that "/var/lib/opkg/status" gives for the package into version, 32 bytes. -1,
 * version as it was, without that file or package. */
CMPNT_API int32_t cmpnt_get_pkg_current_version(const char *pkg_name, char *version);

/* ==== Package database ===================================================================== */

struct sqlite3;

/* Tables. */
enum {
    CMPNT_PACKAGE_INFO_TABLE = 1,
    CMPNT_PKG_UPGRADE_TABLE = 2,
    CMPNT_SERVER_TABLE = 3,
    CMPNT_AUTO_SYNC_TABLE = 4
};

/* Database files. Any other selector opens the main file. */
enum {
    CMPNT_DB_MAIN = 0,     /* /var/lib/opkg/cmpnt_upgrade.db3 */
    CMPNT_DB_SERVER = 1,   /* TMPDIR/opkg/server/.cmpnt_server.db3 */
    CMPNT_DB_BACKUP = 2,   /* /data/cmpnt/opkg/cmpnt_upgrade_backup.db3 */
    CMPNT_DB_AUTO_SYNC = 3 /* /var/lib/opkg/cmpnt_auto_sync.db3 */
};

/* Package states, as stored. */
enum {
    CMPNT_STATE_INIT = 0,
    CMPNT_STATE_INSTALL_READY = 1,
    CMPNT_STATE_INSTALLED = 2,
    CMPNT_STATE_ACTIVE_READY = 3,
    CMPNT_STATE_ACTIVE = 4,
    CMPNT_STATE_ACTIVE_COLD = 5,
    CMPNT_STATE_RUNNING = 6,
    CMPNT_STATE_DEACTIVE_COLD = 7,
    CMPNT_STATE_DEACTIVE_READY = 8,
    CMPNT_STATE_INVALID_HP_ACTIVE = 9,
    CMPNT_STATE_INVALID_HP_RUNNING = 10,
    CMPNT_STATE_INVALID_ACTIVE_READY = 11,
    CMPNT_STATE_INVALID_ACTIVE_COLD = 12,
    CMPNT_STATE_INVALID_DEACTIVE_READY = 13,
    CMPNT_STATE_INVALID_DEACTIVE_COLD = 14
};

/* A row of pkg_upgrade_table or auto_sync_table, as written and as read by a query. */
typedef struct cmpnt_pkg_record {
    int32_t pkg_state;
    int32_t card_id;
    int32_t cur_flag;
    int32_t op_flag;
    int32_t patch_size;
    int32_t patch_order;
    int32_t patch_type;
    char patch_name[80];
    char pkg_name[80];
    char cur_pkg_path[260];
    char cur_version[32];
    char last_version[32];
    char description[256];
    char patch_ver[32];
    char patch_id[80];
    char effective_time[32];
    char last_patch[80];
    char hotpatch_file[260];
    char hotpatch_target[240];
    char hotpatch_target_path[780];
    char hotpatch_target_pkg_path[780];
    char hotpatch_target_md5[192];
    char hotpatch_target_strip_md5[192];
} cmpnt_pkg_record;

/* A row of package_info_table. */
typedef struct cmpnt_base_pkg_record {
    char package_name[80];
    char base_version[32];
    char current_version[32];
    int32_t package_state;
    int32_t package_is_new;
    int32_t upgrade_count;
} cmpnt_base_pkg_record;

/* What a write or a query is asked and, for a query, its answer. Zero it, then set what the operation
 * needs. */
typedef struct cmpnt_db_request {
    int32_t table;
    int32_t cmd;     /* the operation code, also passed as an argument */
    int32_t exist;   /* out: 1 the row exists */
    int32_t db_type; /* a database file */
    cmpnt_base_pkg_record base;
    cmpnt_pkg_record record;
    int32_t sync_id;
    int32_t sync_flag;
} cmpnt_db_request;

/* The fields of a record that only single patches have. */
typedef struct cmpnt_single_patch_value {
    int32_t unused_word;
    char patch_ver[32];
    char patch_id[80];
    char effective_time[32];
    char last_patch[80];
    int32_t patch_size;
    int32_t patch_order;
    int32_t patch_type;
} cmpnt_single_patch_value;

/* State words to codes and back. Only "installed" (2), "active" and "invalid_hp_active" (4),
 * "running" and "invalid_hp_running" (6) are understood; any other word gives 0. A code without a
 * word gives "Unknow". Words are constants. */
CMPNT_API int32_t cmpnt_conver_state_to_int(const char *state);
CMPNT_API const char *cmpnt_conver_state_to_str(int32_t code);
CMPNT_API const char *cmpnt_conver_sync_flag_to_str(int32_t flag); /* "Init", "Finish", "Unknow" */

/* Fill records. The first two zero the record first, so the texts must not lie in it; null texts and
 * zero integers keep that zero. The third keeps the rest of the record and, of the integers, what a
 * zero would replace. */
CMPNT_API void set_base_db_value(cmpnt_base_pkg_record *rec, const char *package_name,
                                 const char *base_version, const char *current_version,
                                 int32_t package_state, int32_t package_is_new,
                                 int32_t upgrade_count);
CMPNT_API void set_upgrade_db_value(cmpnt_pkg_record *rec, const char *patch_name,
                                    const char *pkg_name, const char *cur_pkg_path,
                                    const char *cur_version, const char *last_version,
                                    int32_t pkg_state, int32_t card_id, int32_t cur_flag,
                                    int32_t op_flag, const char *description);
CMPNT_API void set_single_patch_db_value(cmpnt_pkg_record *rec,
                                         const cmpnt_single_patch_value *val);

/* Takes the lock that every database operation holds from before the open to after the close, waiting
 * as long as it takes, and returns its descriptor; close it with cmpnt_close to release the lock. -1
 * on failure. It excludes processes, not threads, and closing any descriptor of the lock file
 * releases it: a platform function that runs under it (cli_printf, the log printers) must not call
 * the database. */
CMPNT_API int32_t cmpnt_open_db_flock(void);

/* Open a database file, creating an empty one when it is missing; close it with sqlite3_close. On
 * failure the handle is null. Take the lock first. */
CMPNT_API int32_t open_sqlite(struct sqlite3 **db, const char *path);
CMPNT_API int32_t open_server_sqlite(struct sqlite3 **db);
CMPNT_API int32_t cmpnt_open_sqlite(struct sqlite3 **db, int32_t db_type);

/* Creates a table in a database file. -1 also when it is there already; a table number outside 1 to 4
 * creates nothing and gives 0. */
CMPNT_API int32_t cmpnt_create_pkg_table(int32_t table, int32_t db_type);

/* 1 when a select on the table succeeds, else 0; always 1 for a table number outside 1 to 3. The file
 * is created empty when it is missing. */
CMPNT_API int32_t cmpnt_table_is_exist(int32_t table, int32_t db_type);

/* 1 when the main file has package_info_table and pkg_upgrade_table. Ask it before the first write
 * after a start: a write to a lost main file would copy an empty one over the backup. */
CMPNT_API int32_t cmpnt_db_tabel_is_exist(void);

/* Runs one write, by operation code (docs/database.md has the table of codes). The existence test
 * goes by req->cmd, the action by cmd: set both alike. 0 also when an action that wants an existing
 * row finds none. Texts are put into the statement as they are: a quote breaks it. An update met by a
 * locked file is tried six times, a second apart. Whenever req is for table 2 of the main file, that
 * file is then copied over the backup with a shell command. */
CMPNT_API int32_t cmpnt_operate_pkg_database(cmpnt_db_request *req, int32_t cmd);

/* Copies the main file over the backup file. It takes no lock: hold it. */
CMPNT_API int32_t cmpnt_backup_sqlite_db_to_data(void);

/* Runs one query: selects req->table of req->db_type and matches each row by req->cmd (the codes are
 * listed in docs/database.md); of several matching rows the last stays in req. 0 also when no row
 * matches. */
CMPNT_API int32_t cmpnt_get_pkg_info_database(cmpnt_db_request *req);
CMPNT_API int32_t read_pkg_info_table(struct sqlite3 *db, cmpnt_db_request *req); /* its select */

/* Clears req and queries the table of the main file by cmd. */
CMPNT_API int32_t cmpnt_get_pkg_state(cmpnt_db_request *req, int32_t table, int32_t cmd);

/* Row modes of a traversal. */
enum {
    CMPNT_ROWS_SHOW_ALL = 0,
    CMPNT_ROWS_SHOW_ACTIVE = 1,
    CMPNT_ROWS_SHOW_RUNNING = 2,
    CMPNT_ROWS_BY_PKG_NAME = 3,     /* cmpnt_add_to_upgrade_list_by_pkg_name */
    CMPNT_ROWS_TO_UPGRADE_LIST = 4, /* cmpnt_add_upgrade_value_to_list, upgrade list */
    CMPNT_ROWS_CLEAR = 5,           /* removes the directories of SMUs no longer needed, but for
                                        those of paths of 260 bytes or more */
    CMPNT_ROWS_NOT_INSTALLED = 6,   /* cmpnt_add_to_list_by_pkg_version */
    CMPNT_ROWS_BY_SMU = 7,          /* cmpnt_add_to_list_by_smu */
    CMPNT_ROWS_SINGLE_PATCHES = 8,  /* cmpnt_add_to_list_by_single */
    CMPNT_ROWS_TO_AUTO_SYNC = 9,    /* insert_auto_sync_node_to_list, auto_sync_list, each SMU once
                                        and only those unpacked (smu_dir_path_is_null) */
    CMPNT_ROWS_NOTHING = 10,
    CMPNT_ROWS_TO_HP_LIST = 11 /* cmpnt_add_upgrade_value_to_list, hot-patch list */
};

/* Reads a whole table and hands every row to the mode's action. arg belongs to mode 5: its low byte
 * is the communication type, the next the device type. A missing file gives 0 and is not created. The
 * lists keep what they held. A mode that is not listed does nothing and gives 0. */
CMPNT_API int32_t traverse_pkg_info_table(int32_t table, int32_t mode, uint32_t arg,
                                          int32_t db_type);
CMPNT_API int32_t select_pkg_info_table(struct sqlite3 *db, int32_t table, int32_t mode,
                                        uint32_t arg);

/* Loads pkg_upgrade_table of the main file into the hot-patch list. */
CMPNT_API int32_t cmpnt_get_database_hp_list(void);

/* Row printers, through cli_printf: callbacks of sqlite3_exec whose context is an int32_t, zero at
 * the start, that remembers whether the header was printed. */
CMPNT_API int select_all_callback(void *counter, int columns, char **values, char **names);
CMPNT_API int select_active_callback(void *counter, int columns, char **values, char **names);
CMPNT_API int select_running_callback(void *counter, int columns, char **values, char **names);
CMPNT_API void cmpnt_show_db_field_value(int32_t columns, char **values, char **names);
CMPNT_API void cmpnt_show_state_field_value(int32_t columns, char **values, char **names);

/* Keep the main file in step with what happened to a patch or package; 0 also when no row matched.
 * The state of a base package (table 1) is only changed where its base_version is empty. */
CMPNT_API int32_t cmpnt_update_state_database(const char *patch_name, const char *name,
                                              int32_t state, int32_t table);
CMPNT_API int32_t cmpnt_delete_record_from_db(const char *patch_name, int32_t db_type);
/* With table 1 this deletes rows whose package_name is empty. */
CMPNT_API int32_t cmpnt_delete_db_record_by_patch(const char *patch_name, int32_t db_type,
                                                  int32_t table);
/* Clears req and reads the patch's row into req->record; req->exist is 1 when there is one. */
CMPNT_API int32_t cmpnt_get_db_by_patch(cmpnt_db_request *req, const char *patch_name);
CMPNT_API int32_t cmpnt_pkg_name_exist_in_base_table(const char *package_name); /* 1, 0 or -1 */
CMPNT_API int32_t cmpnt_pkg_name_exist_in_upgrade_table(const char *pkg_name);  /* 1, 0 or -1 */
CMPNT_API int32_t cmpnt_update_time_by_patch(const char *patch_name, const char *time);
CMPNT_API int32_t cmpnt_update_active_time(const char *patch_name);   /* the time is now */
CMPNT_API int32_t cmpnt_update_deactive_time(const char *patch_name); /* the time is "" */

/* Removes the files of a package: in a directory whose last component contains "download" the file
 * and its transfer leftover "_temp_NAME__"; in one with ".single", ".multiple" or ".new" that whole
 * directory; elsewhere nothing. A path of 260 bytes or more gives -1. */
CMPNT_API int32_t cmpnt_delete_pkg_by_path(const char *path);

/* ==== Safe verification ==================================================================== */

/* docs/security.md tells what is checked and what is not. Whether verification is on at all is the
 * platform's answer to four values, of which the first is the function's own first argument: they are
 * handed to cmpnt_safe_verify_enable as they are. */

/* 0 when the package may be installed: verification is off, or
 *   .deb  its directory's "patch-sm3.hash" is signed by "patch-sm2.sign", every file "smu..." of the
 *         directory has the digest listed there, and so has the package itself;
 *   .ipk  the global hash list is signed, and every file that the package brings into a trusted
 *         directory and that is on the list has the digest listed there, or is on a whitelist;
 *   any other suffix: nothing is checked.
 * -1 otherwise. The suffix counts from the last "." of the whole path. The path reaches a shell
 * unquoted. A patch directory's signature is checked once in a row, that of the global list once
 * until cmpnt_sign_verify_init; after a failed .ipk the unpacked files stay in
 * "/var/cache/opkg/cmpnt_safe_verify/safe_data_tmp", and all but links fail the next one too:
 * remove them. */
CMPNT_API int32_t cmpnt_safe_verify(const char *path, uintptr_t second, uintptr_t third,
                                    uintptr_t fourth);

/* Call the first before a run of verifications, the second after it: the lists that were verified are
 * forgotten (the digests stay), and the digests are freed. */
CMPNT_API void cmpnt_sign_verify_init(void);
CMPNT_API void cmpnt_free_sign_verify(void);

/* 1 when the path begins with one of the trusted system directories; "/binx" begins with "/bin". */
CMPNT_API int32_t cmpnt_is_safe_verify_dir(const char *path);

/* One digest of the list: of a patch file by its bare name, of an installed file by its path. */
typedef struct hash_verify_list_t {
    char *name;       /* owned, as is the next */
    char *hash_value; /* SM3, hexadecimal */
    cmpnt_list_head link;
} hash_verify_list_t;

/* The node that a link of hash_verify_list belongs to. */
#define CMPNT_HASH_NODE(link_pointer)                                                              \
    ((hash_verify_list_t *)(void *)((char *)(link_pointer)-offsetof(hash_verify_list_t, link)))

/* Appends a digest and takes both texts, blocks of malloc. When the name is listed already nothing
 * is taken, and the result is 0 all the same: look first. -1 for null or without memory, and nothing
 * is taken. */
CMPNT_API int32_t cmpnt_add_hash_verify_list(char *name, char *hash_value);
CMPNT_API void cmpnt_recycle_hash_verify_list(void); /* frees all digests with their texts */

/* 0 when the digest of the file directory/name is the one listed for name; -1 also when none is. */
CMPNT_API int32_t cmpnt_check_patch_hash_value(const char *name, const char *directory);

/* 0 when every file under a directory of the unpacked package passes: it is on no list, on the global
 * whitelist, has the listed digest, or is on the dynamic whitelist. Of links those under /etc/rc.d
 * are checked, devices and sockets never. A file is listed by its path without the first 47
 * characters, the length of the scratch directory's. -1 also for null, a directory that cannot be
 * read and a path of 260 bytes or more. */
CMPNT_API int32_t cmpnt_global_hash_file_verify(const char *directory);

/* 1 when a line of the global whitelist begins with path, and its signature file exists; else 0. The
 * signature is checked by cmpnt_safe_verify alone. */
CMPNT_API int32_t file_exist_in_global_whitelist(const char *path);

/* 1 when the dynamic whitelist has the path; mode 0: from any client, mode 1: from this library. Else,
 * and in other modes, 0. */
CMPNT_API int32_t file_exist_in_dynamic_whitelist(const char *path, int32_t mode);

/* Tells the verification service which files in trusted directories the saved patches changed,
 * through the data store (channel 0) or by a call (channel 1), and deletes the saved patch list,
 * whatever comes of it. 0, also when verification is off or nothing is saved; -1 on failure: what was
 * sent before stays in effect, and only a list that cannot be opened is left. */
CMPNT_API int32_t cmpnt_write_trusted_start_whitelist(uintptr_t store, uintptr_t channel,
                                                      uintptr_t third, uintptr_t fourth);

/* Creates the file that switches verification on, or empties it; not its directory. */
CMPNT_API int32_t cmpnt_enable_safe_verify(void);

/* Adds the package to the saved patch list, once (a name of over 1022 characters each time). 0, also
 * when it is there already, or nothing is done because verification is off; -1 on failure. */
CMPNT_API int32_t cmpnt_save_safe_verify_patch(const char *pkg_name, uintptr_t second,
                                               uintptr_t third, uintptr_t fourth);

/* ==== Hot-patch lookup ===================================================================== */

/* Given each answer in turn: the criteria with their wildcards filled in, valid during the call.
 * 0 goes on. It may call the library, and must not throw or jump out. */
typedef int32_t (*libcmpnt_db_find_callback)(const char *filled);

/* Asks the main database which upgrade records satisfy the criteria, in database order (of rows with
 * the same patch and package the first). The criteria are items joined by "#", each a key, ":" and a
 * value. With the value "*" the item is filled in with the record's; any other value is a condition:
 *     Is_hotpatch:1#Package:*
 * Keys: Is_hotpatch (1 or 0), Package, Hotpatch_file, Hotpatch_target_pkg (the record's
 * hotpatch_target), Hotpatch_target_path, State (a word), Pkg_path, and, as a condition alone,
 * Version. At least one condition and one "*"; at most 31 items, in the first 1023 bytes. Write items
 * to be filled in before conditions on the same key.
 *     0  every record was examined, also when none matched or the database is missing
 *    -1  null; criteria that cannot be split, or that lack a condition (when there is a record) or
 *        a "*" (when one matches); a key that cannot be filled in; an answer more than 3584 bytes
 *        longer than the criteria (one of exactly that loses its last byte); no memory
 *    -2  the records could not be loaded
 *    -4  a condition on an unknown key
 *     other  what the callback returned, which ended the lookup
 * The hot-patch list is used for the records; it is empty in the callback and afterwards. Null leaves
 * it as it was. */
CMPNT_API int32_t libcmpnt_db_find(const char *criteria, libcmpnt_db_find_callback callback);

/* One record's part in it, with the same results. */
CMPNT_API int32_t get_hotpatch_to_db(const cmpnt_upgrade_value *record, const char *criteria,
                                     libcmpnt_db_find_callback callback);

/* Compares the file that a hot patch targets with the digests recorded for it: of the main database's
 * records the first with this cur_pkg_path tells the file (hotpatch_target_path) and its MD5 as
 * shipped and stripped. 0 when one of them is right, and when no record has this path; -1 for null or
 * a file that is neither or missing; -2 when the records could not be loaded. The hot-patch list is
 * used for the records, and is empty afterwards; null leaves it as it was. */
CMPNT_API int32_t libcmpnt_db_check_hp_tgt_md5(const char *pkg_path);

#ifdef __cplusplus
}
#endif

#endif
