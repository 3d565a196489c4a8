# make run    set up, build, and print the report of the bundled example dump
# make test   set up, build, run every test, then again under ASan+UBSan
# make asan   the whole suite under ASan+UBSan (clang)
# make fuzz   build the fuzz targets and run each for FUZZ_SECONDS
# make bench  the benchmarks (not part of make test)

JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 60

.PHONY: run test build asan fuzz bench setup clean

setup:
	@scripts/setup

# The main tree is g++ at full optimisation, where some warnings only show;
# our own builds fail on any warning.
build/build.ninja: Makefile
	CC=gcc CXX=g++ cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DKRD_WERROR=ON

build: setup build/build.ninja
	cmake --build build -j $(JOBS)

run: build
	@build/krd -m build/examples/LQZ1234567_R1A.elf build/examples/example.pmd

test: build
	cd build && ctest -j $(JOBS) --output-on-failure
	$(MAKE) --no-print-directory asan

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

clean:
	rm -rf build build-asan build-fuzz
