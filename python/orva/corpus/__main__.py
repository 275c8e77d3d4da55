# SPDX-License-Identifier: GPL-2.0-or-later
"""``python3 -m orva.corpus RECIPE.toml IN... --out FOLDER [--scheduler tcp://...]``."""
import argparse
import sys
from contextlib import ExitStack
from typing import List, Optional

from .execution import CutOff
from .running import run

STATUS = """\
Exit status: 0 if all recordings are complete, 1 if some are in failures.csv, 2 for a wrong call or recipe and for a
package that is missing, 3 if the run was cut off, for example by a full disk, and 130 by an interrupt. The same call
again makes what is missing.
"""


def main(arguments: Optional[List[str]] = None) -> int:
    """Runs, and gives the exit status."""
    parser = argparse.ArgumentParser("python3 -m orva.corpus", description="Makes a recipe of all recordings.",
                                     epilog=STATUS, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("recipe", metavar="RECIPE.toml", help="steps and outputs")
    parser.add_argument("files", metavar="IN", nargs="+", help="a sound file, or a folder of them")
    parser.add_argument("--out", metavar="FOLDER", required=True, help="takes the results")
    parser.add_argument("--scheduler", metavar="ADDRESS", help="of a cluster of Dask; without it, this machine")
    parser.add_argument("--batch", metavar="N", type=int, help="recordings in a task")
    asked = parser.parse_args(arguments)
    try:
        with ExitStack() as stack:
            client = None
            if asked.scheduler:
                from distributed import Client
                client = stack.enter_context(Client(asked.scheduler))
            report = run(asked.recipe, asked.files, asked.out, client, asked.batch)
    except KeyboardInterrupt:
        return _told("interrupted; what is complete stays", 130)
    except ValueError as error:
        return _told(str(error), 2)
    except ImportError as error:
        return _told(f"{error}; needed are soundfile and dask, for a cluster distributed, for Zarr zarr", 2)
    except (CutOff, OSError, MemoryError) as error:
        return _told(f"{error}; what is complete stays, the same call makes the rest", 3)
    print(f"{report.complete} complete, {report.new} of them new, {report.failed} failed")
    return 1 if report.failed else 0


def _told(what: str, status: int) -> int:
    print(f"orva.corpus: {what}", file=sys.stderr)
    return status


if __name__ == "__main__":
    sys.exit(main())
