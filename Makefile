# make run    set up, build krd and the example, print the example's report
# make test   set up, build, run every test, then again under ASan+UBSan,
#             then build the Debian package and check it
# make install [PREFIX=/usr/local] [DESTDIR=]   install krd, its man page
#             and its bash completion
# make deb    the Debian package, build-deb/krd_<version>_<arch>.deb
# make asan   the whole suite under ASan+UBSan (clang)
# make fuzz   build the fuzz targets and run each for FUZZ_SECONDS
# make bench  the benchmarks (not part of make test)

JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 60
PREFIX ?= /usr/local

.PHONY: run test build asan fuzz bench setup clean install deb deb-check

setup:
	@scripts/setup

# The main tree is g++ at full optimisation, where some warnings only show;
# our own builds fail on any warning.
build/build.ninja: Makefile
	CC=gcc CXX=g++ cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DKRD_WERROR=ON

build: setup build/build.ninja
	cmake --build build -j $(JOBS)

# Only what the report needs: no tests, no fixtures. examples/all holds the
# example's symbol file and its signal symbol archive.
run: setup build/build.ninja
	cmake --build build -j $(JOBS) --target krd examples/all
	@build/krd -m build/examples/LQZ1234567_R1A.elf -z build/examples/sigs.zip build/examples/example.pmd

test: build
	cd build && ctest -j $(JOBS) --output-on-failure
	$(MAKE) --no-print-directory asan
	$(MAKE) --no-print-directory deb-check

build-asan/build.ninja: Makefile
	CC=clang CXX=clang++ cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DKRD_SANITIZE=ON -DKRD_WERROR=ON

asan: setup build-asan/build.ninja
	cmake --build build-asan -j $(JOBS)
	cd build-asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest -j $(JOBS) --output-on-failure

build-fuzz/build.ninja: Makefile
	CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKRD_FUZZ=ON -DKRD_WERROR=ON

fuzz: setup build-fuzz/build.ninja
	cmake --build build-fuzz -j $(JOBS)
	fuzz/run build-fuzz $(FUZZ_SECONDS)

bench: build
	bench/run build

install: setup build/build.ninja
	cmake --build build -j $(JOBS) --target krd
	DESTDIR=$(DESTDIR) cmake --install build --prefix $(PREFIX)

# The package is built as Debian builds its own (-O2 -g, then stripped), and
# without the tests, which also shows that krd builds without a test library.
build-deb/build.ninja:
	cmake -S . -B build-deb -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBUILD_TESTING=OFF

deb: setup build-deb/build.ninja
	cmake --build build-deb -j $(JOBS)
	rm -f build-deb/krd_*.deb
	cd build-deb && cpack -G DEB

deb-check: deb build
	dist/check-deb build-deb/krd_*.deb build

clean:
	rm -rf build build-asan build-fuzz build-deb
