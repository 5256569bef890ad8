// Small file chores of tests.
#ifndef CMPNT_TESTS_FILES_HH
#define CMPNT_TESTS_FILES_HH

#include <string>
#include <vector>

// The whole file; empty when it cannot be read.
std::string read_file(const std::string &path);

// Creates or replaces the file, and its directories when missing.
void write_file(const std::string &path, const std::string &text);

// As if the file had not been written for years; links are followed.
void set_written_long_ago(const std::string &path);

void make_directories(const std::string &path);  // mkdir -p
void remove_tree(const std::string &path);       // rm -rf
bool exists(const std::string &path);            // lstat
int mode_of(const std::string &path);            // permission bits; -1 when missing
long long size_of(const std::string &path);      // -1 when missing
std::vector<std::string> names_in(const std::string &directory);  // sorted
int open_descriptors();                                           // how many this process has

#endif
