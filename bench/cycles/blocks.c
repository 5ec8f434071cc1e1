/* SPDX-License-Identifier: MIT */
/* A plugin of qemu's user emulation: how often each translated block of instructions has run, and its instructions.
 *   qemu-aarch64 -plugin blocks.so,out=FILE PROGRAM
 * Each line of the file: address, number of runs, instruction words in hexadecimal.
 * Debian ships qemu without the plugin header, so the few functions used are declared here. */
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

struct qemu_plugin_tb;
struct qemu_plugin_insn;
typedef uint64_t qemu_plugin_id_t;
enum { add_u64 = 0 };
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t, void (*)(qemu_plugin_id_t, struct qemu_plugin_tb*));
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb*, int operation, void* counter, uint64_t amount);
void qemu_plugin_register_atexit_cb(qemu_plugin_id_t, void (*)(qemu_plugin_id_t, void*), void* data);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb*);
uint64_t qemu_plugin_tb_vaddr(const struct qemu_plugin_tb*);
struct qemu_plugin_insn* qemu_plugin_tb_get_insn(const struct qemu_plugin_tb*, size_t index);
const void* qemu_plugin_insn_data(const struct qemu_plugin_insn*);

#define EXPORTED __attribute__((visibility("default")))
EXPORTED int qemu_plugin_version = 1;

struct block {
    struct block* next;
    uint64_t address, runs;
    size_t size;
    uint32_t words[];
};
static struct block* g_blocks;
static char g_path[4096];

static void on_translation(qemu_plugin_id_t id, struct qemu_plugin_tb* tb) {
    (void)id;
    const size_t size = qemu_plugin_tb_n_insns(tb);
    struct block* block = calloc(1, sizeof *block + size * sizeof block->words[0]);
    if (!block) abort();
    block->address = qemu_plugin_tb_vaddr(tb);
    block->size = size;
    for (size_t i = 0; i < size; i++) memcpy(&block->words[i], qemu_plugin_insn_data(qemu_plugin_tb_get_insn(tb, i)), 4);
    block->next = g_blocks;
    g_blocks = block;
    qemu_plugin_register_vcpu_tb_exec_inline(tb, add_u64, &block->runs, 1);
}

static void on_exit_of_program(qemu_plugin_id_t id, void* data) {
    (void)id, (void)data;
    FILE* file = fopen(g_path, "w");
    if (!file) abort();
    for (const struct block* block = g_blocks; block; block = block->next) {
        if (!block->runs) continue;
        fprintf(file, "%" PRIx64 " %" PRIu64 " ", block->address, block->runs);
        for (size_t i = 0; i < block->size; i++) fprintf(file, "%08" PRIx32, block->words[i]);
        fputc('\n', file);
    }
    fclose(file);
}

EXPORTED int qemu_plugin_install(qemu_plugin_id_t id, const void* info, int argc, char** argv) {
    (void)info;
    for (int i = 0; i < argc; i++)
        if (strncmp(argv[i], "out=", 4) == 0) snprintf(g_path, sizeof g_path, "%s", argv[i] + 4);
    if (!g_path[0]) return 1;
    qemu_plugin_register_vcpu_tb_trans_cb(id, on_translation);
    qemu_plugin_register_atexit_cb(id, on_exit_of_program, NULL);
    return 0;
}
