# IBM Z (Debian s390x): LP64, big-endian.
set(CDR_CROSS_TRIPLET s390x-linux-gnu)
set(CDR_CROSS_PROCESSOR s390x)
set(CDR_CROSS_QEMU qemu-s390x)
set(CDR_CROSS_LOADER /lib/ld64.so.1)
include(${CMAKE_CURRENT_LIST_DIR}/cross-debian.cmake)
