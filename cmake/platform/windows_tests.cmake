# What tests are told on Windows, and which of them cannot run there.
target_compile_definitions(orva_test_options INTERFACE _USE_MATH_DEFINES)
target_link_options(orva_test_options INTERFACE -Wl,--undefined=hypot)    # as the library has it

orva_leave_out(interposer "work by standing between a program and the C library, which a DLL takes by name")
orva_leave_out(strace "watch system calls of Linux")
orva_leave_out(lint "look at sources and at code compiled for the purpose, the same on every system")
orva_leave_out(package "look at what is installed and packed for Debian")
orva_leave_out(memory_limit "limit the memory of a process of a POSIX system")
orva_leave_out(superuser "need a second user, whom only a superuser of a POSIX system can become")
orva_leave_out(posix "ask for what Windows has not: fork, signals, modes and limits, unloading that waits; or read ELF files")
orva_leave_out(suppressor "compare with the WebRTC library, of which there is no build for Windows")
orva_leave_out(programs "run programs, which need Cairo, of which there is no build for Windows here")
orva_leave_out(python "run in an interpreter, with packages, of which there are none for Windows here")
orva_leave_out(docs "compile and run the programs of the documents with the compiler of this system")
