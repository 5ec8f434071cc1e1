/* SPDX-License-Identifier: MIT */
/* Functions of a program by the names that the library uses inside. */
extern int calls;
void* MemMgrAlloc(const char* file, int line);
void MemMgrFree(const char* file);
int MemMgrCpy(void);
int MemMgrSet(void);
void* zivParallelInit(void);
int zivParallelUninit(void);
int zivParallelEngineCores(void);
int zivAddTask(void);
int zivWaitTask(void);
int zivTryFireCpu(void);
int zivTryRestoreCpu(void);
