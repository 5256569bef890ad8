// The layout of every record that hosts and the platform share with the library, as built for the
// device and for 64-bit machines: fields in their order, natural alignment, nothing added.
#include "libcmpnt_db.h"
#include "platform/platform.h"

namespace {

constexpr size_t pointer = sizeof(void *);

static_assert(pointer == 4 || pointer == 8, "the layouts below are known for these two");

static_assert(offsetof(file_name_list, count) == 0);
static_assert(offsetof(file_name_list, total_size) == 4);
static_assert(offsetof(file_name_list, names) == 8);
static_assert(offsetof(file_name_list, first_text) == 8 + 300 * pointer);
static_assert(offsetof(file_name_list, second_text) == 8 + 301 * pointer);
static_assert(sizeof(file_name_list) == 8 + 302 * pointer);

static_assert(offsetof(cmpnt_comm_info, count) == 0);
static_assert(offsetof(cmpnt_comm_info, names) == pointer);
static_assert(offsetof(cmpnt_comm_info, first_text) == 301 * pointer);
static_assert(offsetof(cmpnt_comm_info, second_text) == 302 * pointer);
static_assert(sizeof(cmpnt_comm_info) == 303 * pointer);

// The role is the fourth word whatever the width of a pointer.
static_assert(offsetof(cmpnt_dev_info, role) == 12);
static_assert(sizeof(cmpnt_dev_info) == 64);

static_assert(offsetof(cmpnt_communication, host_words) == 0);
static_assert(offsetof(cmpnt_communication, fds) == 8);
static_assert(sizeof(cmpnt_communication) == 20);

static_assert(offsetof(cmpnt_timer_context, owner) == 0);
static_assert(offsetof(cmpnt_timer_context, master) == pointer);
static_assert(sizeof(cmpnt_timer_context) == 2 * pointer);

static_assert(offsetof(cmpnt_list_head, next) == 0);
static_assert(offsetof(cmpnt_list_head, prev) == pointer);
static_assert(sizeof(cmpnt_list_head) == 2 * pointer);

static_assert(offsetof(cmpnt_upgrade_value, card_id) == 0);
static_assert(offsetof(cmpnt_upgrade_value, op_flag) == 4);
static_assert(offsetof(cmpnt_upgrade_value, patch_name) == 8);
static_assert(offsetof(cmpnt_upgrade_value, state_name) == 88);
static_assert(offsetof(cmpnt_upgrade_value, description) == 113);
static_assert(offsetof(cmpnt_upgrade_value, patch_ver) == 369);
static_assert(offsetof(cmpnt_upgrade_value, patch_id) == 401);
static_assert(offsetof(cmpnt_upgrade_value, effective_time) == 481);
static_assert(offsetof(cmpnt_upgrade_value, last_patch) == 513);
static_assert(offsetof(cmpnt_upgrade_value, patch_size) == 596);
static_assert(offsetof(cmpnt_upgrade_value, patch_order) == 600);
static_assert(offsetof(cmpnt_upgrade_value, patch_type) == 604);
static_assert(offsetof(cmpnt_upgrade_value, cur_flag) == 608);
static_assert(offsetof(cmpnt_upgrade_value, unused_word) == 612);
static_assert(offsetof(cmpnt_upgrade_value, pkg_name) == 616);
static_assert(offsetof(cmpnt_upgrade_value, cur_version) == 696);
static_assert(offsetof(cmpnt_upgrade_value, last_version) == 728);
static_assert(offsetof(cmpnt_upgrade_value, unused_text) == 760);
static_assert(offsetof(cmpnt_upgrade_value, cur_pkg_path) == 1016);
static_assert(offsetof(cmpnt_upgrade_value, pkg_state_name) == 1276);
static_assert(offsetof(cmpnt_upgrade_value, hotpatch_file) == 1301);
static_assert(offsetof(cmpnt_upgrade_value, hotpatch_target) == 1381);
static_assert(offsetof(cmpnt_upgrade_value, hotpatch_target_path) == 1461);
static_assert(offsetof(cmpnt_upgrade_value, hotpatch_target_pkg_path) == 1721);
static_assert(offsetof(cmpnt_upgrade_value, hotpatch_target_md5) == 1981);
static_assert(offsetof(cmpnt_upgrade_value, hotpatch_target_strip_md5) == 2173);
static_assert(sizeof(cmpnt_upgrade_value) == 2368);

static_assert(offsetof(cmpnt_upgrade_node, value) == 0);
static_assert(offsetof(cmpnt_upgrade_node, link) == 2368);
static_assert(sizeof(cmpnt_upgrade_node) == 2368 + 2 * pointer);

// The fields stand as in an upgrade record from op_flag on.
static_assert(offsetof(cmpnt_smu_value, op_flag) == 0);
static_assert(offsetof(cmpnt_smu_value, patch_name) == 4);
static_assert(offsetof(cmpnt_smu_value, state_name) == 84);
static_assert(offsetof(cmpnt_smu_value, description) == 109);
static_assert(offsetof(cmpnt_smu_value, patch_ver) == 365);
static_assert(offsetof(cmpnt_smu_value, patch_id) == 397);
static_assert(offsetof(cmpnt_smu_value, effective_time) == 477);
static_assert(offsetof(cmpnt_smu_value, last_patch) == 509);
static_assert(offsetof(cmpnt_smu_value, patch_size) == 592);
static_assert(offsetof(cmpnt_smu_value, patch_order) == 596);
static_assert(offsetof(cmpnt_smu_value, patch_type) == 600);
static_assert(sizeof(cmpnt_smu_value) == 604);

static_assert(offsetof(cmpnt_smu_node, value) == 0);
static_assert(offsetof(cmpnt_smu_node, link) == (pointer == 4 ? 604 : 608));
static_assert(sizeof(cmpnt_smu_node) == (pointer == 4 ? 612 : 624));

static_assert(offsetof(hash_verify_list_t, name) == 0);
static_assert(offsetof(hash_verify_list_t, hash_value) == pointer);
static_assert(offsetof(hash_verify_list_t, link) == 2 * pointer);
static_assert(sizeof(hash_verify_list_t) == 4 * pointer);

static_assert(offsetof(cmpnt_md5_context, count) == 0);
static_assert(offsetof(cmpnt_md5_context, state) == 8);
static_assert(offsetof(cmpnt_md5_context, buffer) == 24);
static_assert(sizeof(cmpnt_md5_context) == 88);

// Five words on the device; the pointers among them are whole pointers elsewhere.
static_assert(offsetof(cmpnt_file_param, mode) == 0);
static_assert(offsetof(cmpnt_file_param, name) == pointer);
static_assert(offsetof(cmpnt_file_param, second) == 2 * pointer);
static_assert(offsetof(cmpnt_file_param, third) == 3 * pointer);
static_assert(offsetof(cmpnt_file_param, statement) == 4 * pointer);
static_assert(sizeof(cmpnt_file_param) == 5 * pointer);

// The pointers stand at the next multiple of their size behind 476 bytes.
static_assert(offsetof(cmpnt_control_info, is_reboot) == 0);
static_assert(offsetof(cmpnt_control_info, installed_size) == 4);
static_assert(offsetof(cmpnt_control_info, installed_time) == 8);
static_assert(offsetof(cmpnt_control_info, package) == 12);
static_assert(offsetof(cmpnt_control_info, version) == 92);
static_assert(offsetof(cmpnt_control_info, md5_sum) == 124);
static_assert(offsetof(cmpnt_control_info, architecture) == 188);
static_assert(offsetof(cmpnt_control_info, description) == 220);
static_assert(offsetof(cmpnt_control_info, serial) == (pointer == 4 ? 476 : 480));
static_assert(offsetof(cmpnt_control_info, card_type) == (pointer == 4 ? 480 : 488));
static_assert(sizeof(cmpnt_control_info) == (pointer == 4 ? 484 : 496));

static_assert(offsetof(cmpnt_product_type, type) == 0);
static_assert(offsetof(cmpnt_product_type, product) == 32);
static_assert(sizeof(cmpnt_product_type) == 96);

static_assert(offsetof(cmpnt_history, time) == 0);
static_assert(offsetof(cmpnt_history, cmd) == 32);
static_assert(offsetof(cmpnt_history, patch) == 64);
static_assert(offsetof(cmpnt_history, msg) == 144);
static_assert(sizeof(cmpnt_history) == 272);

static_assert(offsetof(cmpnt_pkg_record, pkg_state) == 0);
static_assert(offsetof(cmpnt_pkg_record, card_id) == 4);
static_assert(offsetof(cmpnt_pkg_record, cur_flag) == 8);
static_assert(offsetof(cmpnt_pkg_record, op_flag) == 12);
static_assert(offsetof(cmpnt_pkg_record, patch_size) == 16);
static_assert(offsetof(cmpnt_pkg_record, patch_order) == 20);
static_assert(offsetof(cmpnt_pkg_record, patch_type) == 24);
static_assert(offsetof(cmpnt_pkg_record, patch_name) == 28);
static_assert(offsetof(cmpnt_pkg_record, pkg_name) == 108);
static_assert(offsetof(cmpnt_pkg_record, cur_pkg_path) == 188);
static_assert(offsetof(cmpnt_pkg_record, cur_version) == 448);
static_assert(offsetof(cmpnt_pkg_record, last_version) == 480);
static_assert(offsetof(cmpnt_pkg_record, description) == 512);
static_assert(offsetof(cmpnt_pkg_record, patch_ver) == 768);
static_assert(offsetof(cmpnt_pkg_record, patch_id) == 800);
static_assert(offsetof(cmpnt_pkg_record, effective_time) == 880);
static_assert(offsetof(cmpnt_pkg_record, last_patch) == 912);
static_assert(offsetof(cmpnt_pkg_record, hotpatch_file) == 992);
static_assert(offsetof(cmpnt_pkg_record, hotpatch_target) == 1252);
static_assert(offsetof(cmpnt_pkg_record, hotpatch_target_path) == 1492);
static_assert(offsetof(cmpnt_pkg_record, hotpatch_target_pkg_path) == 2272);
static_assert(offsetof(cmpnt_pkg_record, hotpatch_target_md5) == 3052);
static_assert(offsetof(cmpnt_pkg_record, hotpatch_target_strip_md5) == 3244);
static_assert(sizeof(cmpnt_pkg_record) == 3436);

static_assert(offsetof(cmpnt_base_pkg_record, package_name) == 0);
static_assert(offsetof(cmpnt_base_pkg_record, base_version) == 80);
static_assert(offsetof(cmpnt_base_pkg_record, current_version) == 112);
static_assert(offsetof(cmpnt_base_pkg_record, package_state) == 144);
static_assert(offsetof(cmpnt_base_pkg_record, package_is_new) == 148);
static_assert(offsetof(cmpnt_base_pkg_record, upgrade_count) == 152);
static_assert(sizeof(cmpnt_base_pkg_record) == 156);

static_assert(offsetof(cmpnt_db_request, table) == 0);
static_assert(offsetof(cmpnt_db_request, cmd) == 4);
static_assert(offsetof(cmpnt_db_request, exist) == 8);
static_assert(offsetof(cmpnt_db_request, db_type) == 12);
static_assert(offsetof(cmpnt_db_request, base) == 16);
static_assert(offsetof(cmpnt_db_request, record) == 172);
static_assert(offsetof(cmpnt_db_request, sync_id) == 3608);
static_assert(offsetof(cmpnt_db_request, sync_flag) == 3612);
static_assert(sizeof(cmpnt_db_request) == 3616);

static_assert(offsetof(cmpnt_single_patch_value, unused_word) == 0);
static_assert(offsetof(cmpnt_single_patch_value, patch_ver) == 4);
static_assert(offsetof(cmpnt_single_patch_value, patch_id) == 36);
static_assert(offsetof(cmpnt_single_patch_value, effective_time) == 116);
static_assert(offsetof(cmpnt_single_patch_value, last_patch) == 148);
static_assert(offsetof(cmpnt_single_patch_value, patch_size) == 228);
static_assert(offsetof(cmpnt_single_patch_value, patch_order) == 232);
static_assert(offsetof(cmpnt_single_patch_value, patch_type) == 236);
static_assert(sizeof(cmpnt_single_patch_value) == 240);

// The platform's clock answers in a word that is a long on both.
static_assert(sizeof(time_t) == sizeof(long));

static_assert(offsetof(vx_mom_record, command) == 0);
static_assert(offsetof(vx_mom_record, result) == pointer);
static_assert(offsetof(vx_mom_record, status) == 2 * pointer);
static_assert(sizeof(vx_mom_record) == 3 * pointer);

// The status is the sixth word on the device.
static_assert(offsetof(vx_mom_wrapped_value, message) == 0);
static_assert(offsetof(vx_mom_wrapped_value, words) == pointer);
static_assert(offsetof(vx_mom_wrapped_value, status) == pointer + 16);
static_assert(sizeof(vx_mom_wrapped_value) == (pointer == 4 ? 24 : 32));

}  // namespace
