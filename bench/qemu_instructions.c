/* A plugin of qemu-user that counts the instructions which the program executes and prints their number at the end. Debian ships
 * no header for plugins: these are the declarations of version 1 that it needs. */
#include <inttypes.h>
#include <stdint.h>
#include <stdio.h>

struct qemu_plugin_tb; /* a block of instructions that run one after the other */
struct qemu_info_t;
void qemu_plugin_register_vcpu_tb_trans_cb(uint64_t id, void (*callback)(uint64_t id, struct qemu_plugin_tb* block));
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* block, int operation, void* counter, uint64_t increment);
void qemu_plugin_register_atexit_cb(uint64_t id, void (*callback)(uint64_t id, void* data), void* data);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* block);
void qemu_plugin_outs(const char* text);
enum { kAdd = 0 };

int qemu_plugin_version = 1;

static uint64_t executed;

static void translated(uint64_t id, struct qemu_plugin_tb* block) {
  (void)id;
  qemu_plugin_register_vcpu_tb_exec_inline(block, kAdd, &executed, qemu_plugin_tb_n_insns(block));
}

static void ended(uint64_t id, void* data) {
  char line[64];
  (void)id, (void)data;
  snprintf(line, sizeof line, "instructions %" PRIu64 "\n", executed);
  qemu_plugin_outs(line);
}

int qemu_plugin_install(uint64_t id, const struct qemu_info_t* info, int argc, char** argv) {
  (void)info, (void)argc, (void)argv;
  qemu_plugin_register_vcpu_tb_trans_cb(id, translated);
  qemu_plugin_register_atexit_cb(id, ended, NULL);
  return 0;
}
