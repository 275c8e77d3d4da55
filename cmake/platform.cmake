# ORVA_PLATFORM: the kind of system that both libraries are built for. All that is written for one kind stands in
# kett/src/platform/<kind>/ and src/platform/<kind>/, behind the headers of the folder above.
set(ORVA_PLATFORM posix)
