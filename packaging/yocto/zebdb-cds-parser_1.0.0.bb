# SPDX-License-Identifier: Apache-2.0

SUMMARY = "Inventory of a server from the CDS file of its firmware"
DESCRIPTION = "Reads the CDS XML file in which a server's firmware describes the hardware and keeps the controller's \
inventory database in step with it."
LICENSE = "Apache-2.0"
LIC_FILES_CHKSUM = "file://LICENSE;md5=b00708eb9aa10e761bf958924ab88cb3"

# The layer says where the sources are, as SRC_URI takes it, in which revision, and which recipe is the platform.
SRC_URI = "${ZEBDB_CDS_PARSER_URI} file://dump_file.cpp file://run-ptest"
SRCREV = "${ZEBDB_CDS_PARSER_REVISION}"
S = "${WORKDIR}/git"

inherit cmake pkgconfig ptest

# Of libxml2 only headers are used.
DEPENDS = "libxml2"
EXTRA_OECMAKE = "-DZEBDB_WORKSTATION_PLATFORM=OFF -DBUILD_TESTING=OFF"

# The platform's functions, and what change detection runs by a shell: sha384sum, touch, awk. The script
# /bin/pci_digest.sh is the platform's.
RDEPENDS:${PN} = "${ZEBDB_PLATFORM} coreutils gawk"

# On the target the library reads a file with the platform's own XML library.
DEPENDS:append = "${@bb.utils.contains('PTEST_ENABLED', '1', ' ${ZEBDB_PLATFORM}', '', d)}"

do_compile_ptest() {
    ${CXX} ${CPPFLAGS} ${CXXFLAGS} -std=c++17 -I${S}/include -I${S}/platform/include ${WORKDIR}/dump_file.cpp \
        -o dump_file ${LDFLAGS} -L${B} -lzebdb_cds_parser ${ZEBDB_PLATFORM_LIBRARIES}
}

do_install_ptest() {
    install -m 0755 dump_file ${D}${PTEST_PATH}
    install -m 0644 ${S}/samples/*.xml ${S}/tests/samples/golden/*.dump ${D}${PTEST_PATH}
}
