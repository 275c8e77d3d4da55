/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  All of libkett, the foundation under liborva: log, settings, configuration strings, files, memory
 *  descriptors, threads, mutexes and a few vector kernels.
 *
 *  All of it works in a child of fork(), whatever other threads of the parent were doing in libkett, and the
 *  child ends. A fork waits for a moment where another thread is at the data of libkett; it does not wait for a
 *  sink of the log, which does not run on in the child, and which may itself fork. Two things a child leaves
 *  alone: a handle that another thread was using at the moment of the fork, and a mutex that one held, which
 *  stays held.
 */
#ifndef KETT_KETT_H
#define KETT_KETT_H

#include <kett/KTcore.h>
#include <kett/KTdebug.h>
#include <kett/KTenv.h>
#include <kett/KTfilter.h>
#include <kett/KTio.h>
#include <kett/KTmem.h>
#include <kett/KTmutex.h>
#include <kett/KTsettings.h>
#include <kett/KTstring.h>
#include <kett/KTthread.h>
#include <kett/KTtypes.h>
#include <kett/KTutils.h>
#include <kett/KTvector.h>
#include <kett/KTversion.h>

#endif
