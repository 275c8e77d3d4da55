/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  All of liborva.
 */
#ifndef ORVA_ORVA_H
#define ORVA_ORVA_H

#include <orva/ORVAcomplex.h>
#include <orva/ORVAcore.h>
#include <orva/ORVAfft.h>
#include <orva/ORVAfilter.h>
#include <orva/ORVAfmclt.h>
#include <orva/ORVAinterpolate.h>
#include <orva/ORVAmisc.h>
#include <orva/ORVAnoisesup.h>
#include <orva/ORVAresample.h>
#include <orva/ORVAsolafs.h>
#include <orva/ORVAspline.h>
#include <orva/ORVAtypes.h>
#include <orva/ORVAutil.h>
#include <orva/ORVAversion.h>
#include <orva/ORVAwinfnc.h>
#include <orva/ORVAxcorr.h>

#endif
