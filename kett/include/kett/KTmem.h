/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Memory descriptors: a named pool that owns every block allocated from it and frees them together.
 *
 *      KT_MEM *memory = KTMEM_CreateMemDescrEx("my processor", 0, 0);
 *      float *line = KTMEM_NewFloatVector(memory, 512);
 *      ...
 *      KTMEM_DisposeMemDescr(memory);           // line is gone too
 *
 *  Every block is zeroed and aligned to at least 16 bytes. One descriptor belongs to one thread at a time.
 */
#ifndef KETT_KTMEM_H
#define KETT_KTMEM_H

#include <kett/KTtypes.h>

/** A memory descriptor. */
typedef struct KT_MEM KT_MEM;

/** Creates an empty descriptor.
 *
 *  @param name          a label for KTMEM_DisplayMemDescr(), copied; null is an empty name.
 *  @param blockSize     hint, not used.
 *  @param blockCount    hint, not used.
 *  @return              the descriptor, or null when memory is out.
 *
 *  Threads: any.   Real time: no (allocates).
 */
KT_API KT_MEM *KTMEM_CreateMemDescrEx(const char *name, uint32_t blockSize, uint32_t blockCount);

/** Allocates a block owned by the descriptor.
 *
 *  @param memory  the descriptor; null gives null.
 *  @param size    bytes; 0 gives a pointer that is not null, to no bytes.
 *  @param flags   not used.
 *  @return        the block, zeroed and aligned to 16 bytes, or null when memory is out or `size` is too
 *                 large.
 *
 *  Threads: one at a time for a descriptor.   Real time: no (allocates).
 */
KT_API void *KTMEM_NewEx(KT_MEM *memory, uint64_t size, uint32_t flags);

/** Allocates a block with an alignment of the caller's choice, owned by the descriptor.
 *
 *  @param memory     the descriptor; null gives null.
 *  @param alignment  bytes, a power of two; less than 16 counts as 16.
 *  @param size       bytes; 0 gives a pointer that is not null, to no bytes.
 *  @return           the block, zeroed, or null when memory is out, `size` is too large or `alignment` is not
 *                    a power of two.
 *
 *  Threads: one at a time for a descriptor.   Real time: no (allocates).
 */
KT_API void *KTMEM_NewAligned(KT_MEM *memory, uint64_t alignment, uint64_t size);

/** Allocates an array of floats owned by the descriptor.
 *
 *  @param memory  the descriptor; null gives null.
 *  @param count   number of floats; 0 gives a pointer that is not null, to no floats; a negative count gives
 *                 null.
 *  @return        the array, all 0.0f and aligned to 16 bytes, or null when memory is out.
 *
 *  Threads: one at a time for a descriptor.   Real time: no (allocates).
 */
KT_API float *KTMEM_NewFloatVector(KT_MEM *memory, int32_t count);

/** Frees the descriptor and every block that it owns.
 *
 *  @param memory  the descriptor, no longer valid after the call; null does nothing.
 *  @return        1, or 0 for null.
 *
 *  Threads: any, while no other uses the descriptor.   Real time: no (frees memory).
 */
KT_API int32_t KTMEM_DisposeMemDescr(KT_MEM *memory);

/** Marks the descriptor as shown and, when the setting "kett.mem.display=[0]" is on, logs its name, the
 *  number of its blocks and their bytes. The descriptor stays allocated.
 *
 *  @param memory  the descriptor; null does nothing.
 *
 *  Threads: any, while no other uses the descriptor.   Real time: no (takes a lock, may log).
 */
KT_API void KTMEM_DisplayMemDescr(KT_MEM *memory);

/** Frees every descriptor that KTMEM_DisplayMemDescr() has shown and nobody has disposed of since. It serves
 *  hosts that want back the memory that owners have not freed; what is left when libkett is unloaded is freed
 *  then.
 *
 *  @return the number of descriptors freed.
 *
 *  Threads: any, while no other uses one of those descriptors.   Real time: no (takes a lock, frees memory).
 */
KT_API int32_t KTMEM_DisposeDisplayed(void);

#endif
