/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  All of libkett, the foundation under liborva: log, settings, configuration strings, files, memory
 *  descriptors, threads, mutexes and a few vector kernels.
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
