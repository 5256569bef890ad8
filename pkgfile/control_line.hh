// Parts of the control-line handler that have a file of their own.
#ifndef CMPNT_PKGFILE_CONTROL_LINE_HH
#define CMPNT_PKGFILE_CONTROL_LINE_HH

#include "libcmpnt_db.h"
#include "pkgfile/text_line.hh"

// Messages of the parts bear the handler's name.
inline constexpr char control_handler_name[] = "cmpnt_parse_line";

// cmpnt_parse_line for a reader that knows the line's length.
int32_t parse_control_line(void *record, TextLine line, cmpnt_file_param *param);

// Mode 4: copies what a line of a file list names into the backup of the base package. 0, or -4.
int32_t back_up_path(const char *path);

// Mode 1: runs the statement with what a paragraph said of its package.
void store_status_row(void *statement, const cmpnt_control_info &record);

// The end of a paragraph, by mode: 0 go on, -1 stop.
int32_t cmpnt_file_blank_line_deal(cmpnt_control_info *record, const cmpnt_file_param *param);

#endif
