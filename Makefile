# VELL: data-driven hierarchical state machines.
# What a person types. Each target first installs the Debian packages that are missing; the builds
# themselves are CMake presets under build/ (`cmake --list-presets`).

JOBS ?= $(shell nproc)
PREFIX ?= /usr/local
PRESET ?= dev

.PHONY: help run test windows faults bench install format tidy symbols abi coverage clean setup

help:
	@echo "make run               build the command and run the sample character"
	@echo "make test              build everything and run every test (PRESET=dev)"
	@echo "make windows           build for Windows and run the tests under Wine"
	@echo "make faults            plant the faults of tests/faults/ and see that tests notice each"
	@echo "make bench             measure, in the release build"
	@echo "make install           install the release build (PREFIX=/usr/local, DESTDIR=)"
	@echo "make format            format the sources with clang-format 14"
	@echo "make tidy              check names and common bugs with clang-tidy 14"
	@echo "make symbols           update the lists of exported symbols"
	@echo "make abi               update the baselines of the binary interfaces"
	@echo "make coverage          show which lines the tests reach"
	@echo "make clean             remove build/"

setup:
	@cmake/install-packages.sh

run: setup
	cmake --preset dev
	cmake --build build/dev -j $(JOBS) --target run_programs
	@samples/run.sh

# Presets of clang need what CI installs.
test:
	@$(if $(filter dev release,$(PRESET)),,CI=true) cmake/install-packages.sh
	cmake --preset $(PRESET)
	cmake --build build/$(PRESET) -j $(JOBS)
	ctest --preset $(PRESET) -j $(JOBS)

windows: setup
	JOBS=$(JOBS) tests/windows/run.sh

faults: setup
	tests/faults/run.sh --keep-going

bench: setup
	@VELL_FOR_BENCH=1 cmake/install-packages.sh 2>/dev/null || true
	cmake --preset release
	cmake --build build/release -j $(JOBS) --target bench_programs
	@bench/run.sh

install: setup
	cmake --preset install
	cmake --build build/install -j $(JOBS)
	cmake --install build/install --prefix $(PREFIX)

format:
	@CI=true cmake/install-packages.sh
	cmake/check-format.sh --fix

tidy:
	@CI=true cmake/install-packages.sh
	cmake --preset dev
	cmake/check-tidy.sh

symbols: setup
	cmake --preset dev
	cmake --build build/dev -j $(JOBS) --target VELLLibX64 DURMBaseX64 TesselX64
	cmake/check-symbols.sh --update build/dev/lib

abi:
	@CI=true cmake/install-packages.sh
	cmake --preset dev
	cmake --build build/dev -j $(JOBS) --target VELLLibX64 DURMBaseX64 TesselX64
	cmake/check-abi.sh --update build/dev/lib

coverage:
	@CI=true cmake/install-packages.sh
	cmake --preset coverage
	cmake --build build/coverage -j $(JOBS)
	find build/coverage -name '*.gcda' -delete
	ctest --preset coverage -j $(JOBS)
	gcovr --print-summary --txt build/coverage/coverage.txt --html-details build/coverage/coverage.html
	tests/check_coverage.py

clean:
	rm -rf build
