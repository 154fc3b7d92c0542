# 32-bit ARM, hard float (Debian armhf): ILP32, little-endian.
set(CDR_CROSS_TRIPLET arm-linux-gnueabihf)
set(CDR_CROSS_PROCESSOR arm)
set(CDR_CROSS_QEMU qemu-arm)
set(CDR_CROSS_LOADER /lib/ld-linux-armhf.so.3)
include(${CMAKE_CURRENT_LIST_DIR}/cross-debian.cmake)
