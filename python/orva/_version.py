# SPDX-License-Identifier: GPL-2.0-or-later
"""The version of the package, which is that of the library it is made for."""

VERSION = "3.7.18"
