# Two entry points for a fresh Debian 12 machine: `make run` and `make test`.
BUILD_DIR ?= build
BUILD_TYPE ?= RelWithDebInfo
JOBS ?= $(shell nproc)

.PHONY: run test deps configure build clean

run: build
	./$(BUILD_DIR)/bin/zamshadereditor

test: build
	cd $(BUILD_DIR) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

deps:
	@./scripts/bootstrap.sh

configure: deps
	@test -f $(BUILD_DIR)/build.ninja || cmake -S . -B $(BUILD_DIR) -G Ninja -DCMAKE_BUILD_TYPE=$(BUILD_TYPE)

build: configure
	cmake --build $(BUILD_DIR) -j $(JOBS)

clean:
	rm -rf $(BUILD_DIR)

# The whole suite again, built with AddressSanitizer and UndefinedBehaviorSanitizer in its own
# folder; the first finding ends the test that hit it. glslang is built without RTTI, so the
# vptr check cannot work on its classes, and GCC's maybe-uninitialized analysis misfires on
# instrumented standard headers (<regex>, <functional>).
ASAN_BUILD_DIR ?= build-asan
SANITIZE := -fsanitize=address,undefined -fno-sanitize=vptr -fno-omit-frame-pointer -Wno-maybe-uninitialized
SANITIZER_ENV := ASAN_OPTIONS=halt_on_error=1:print_stacktrace=1:detect_leaks=1 \
	UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1

.PHONY: test-asan
test-asan: deps
	@test -f $(ASAN_BUILD_DIR)/build.ninja || cmake -S . -B $(ASAN_BUILD_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DCMAKE_CXX_FLAGS="$(SANITIZE)" -DCMAKE_EXE_LINKER_FLAGS="$(SANITIZE)" -DCMAKE_SHARED_LINKER_FLAGS="$(SANITIZE)"
	cmake --build $(ASAN_BUILD_DIR) -j $(JOBS)
	cd $(ASAN_BUILD_DIR) && QT_QPA_PLATFORM=offscreen $(SANITIZER_ENV) ctest --output-on-failure -j $(JOBS)

# Every libFuzzer target (clang, -fsanitize=fuzzer,address,undefined) for SECONDS each, from its
# seed corpus in the tree; make test replays the same seeds through the normal build.
FUZZ_BUILD_DIR ?= build-fuzz
SECONDS ?= 60
.PHONY: fuzz
fuzz: deps
	@test -f $(FUZZ_BUILD_DIR)/build.ninja || CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD_DIR) -G Ninja \
	  -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZAM_FUZZ=ON -DZAM_BUILD_TESTS=OFF
	cmake $(FUZZ_BUILD_DIR) >/dev/null
	cmake --build $(FUZZ_BUILD_DIR) -j $(JOBS) --target $$(cut -d' ' -f1 $(FUZZ_BUILD_DIR)/ZamFuzzers.txt)
	./tests/fuzz/run-fuzzers.sh $(FUZZ_BUILD_DIR) $(SECONDS)

# Reliability figures, one name=value line each: kill -9 during saves, crash and restore of
# five typed-in tabs, the single-instance socket (another user needs root for useradd/runuser),
# hostile file names, runaway and flooding compilers, compile temporary files.
.PHONY: reliability
reliability: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target reliability_save_host reliability_editor_host \
	  reliability_compile_host zam_instance_host fakecc_print fakecc_hang fakecc_forkhang fakecc_setsidhang fakecc_flood \
	  glslcompiler_zc1
	python3 bench/reliability/reliability.py $(BUILD_DIR)

.PHONY: bench-zfxparser
bench-zfxparser: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target bench_zfxparser
	./$(BUILD_DIR)/bench/bench_zfxparser

.PHONY: bench-editing
bench-editing: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target bench_editing
	cd $(BUILD_DIR) && QT_QPA_PLATFORM=offscreen ./bench/bench_editing

.PHONY: bench-compiler
bench-compiler: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target glslcompiler_zc1
	python3 bench/compiler/bench_compiler.py $(BUILD_DIR)/bin

.PHONY: bench-pipeline
bench-pipeline: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target bench_pipeline bench_zfxparser glslcompiler_zc1
	./$(BUILD_DIR)/bench/bench_pipeline $(BUILD_DIR)/bin ./$(BUILD_DIR)/bench/bench_zfxparser

# KSyntaxHighlighting (Qt 5) is only the timing baseline of this benchmark, so its package is
# installed here and its small program is built on its own, not by the bootstrap script.
.PHONY: bench-highlight
bench-highlight: configure
	@dpkg-query -W -f='$${Status}' libkf5syntaxhighlighting-dev 2>/dev/null | grep -q 'install ok installed' || { \
	  sudo=""; [ "$$(id -u)" -eq 0 ] || sudo=sudo; \
	  $$sudo apt-get update -qq && DEBIAN_FRONTEND=noninteractive $$sudo apt-get install -y -qq --no-install-recommends libkf5syntaxhighlighting-dev; }
	cmake --build $(BUILD_DIR) -j $(JOBS) --target bench_highlight
	cmake -S bench/highlight/ksyntax -B $(BUILD_DIR)/bench-ksyntax -G Ninja -DCMAKE_BUILD_TYPE=Release
	cmake --build $(BUILD_DIR)/bench-ksyntax -j $(JOBS)
	QT_QPA_PLATFORM=offscreen ./$(BUILD_DIR)/bench/bench_highlight --ksyntax ./$(BUILD_DIR)/bench-ksyntax/ksyntax_bench

.PHONY: bench-startup
bench-startup: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target zamshadereditor bench_startup bench_startup_bare glslcompiler_zc1 clcompiler_zc1
	./$(BUILD_DIR)/bench/bench_startup ./$(BUILD_DIR)/bin/zamshadereditor ./$(BUILD_DIR)/bench/bench_startup_bare

.PHONY: bench-instance
bench-instance: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target bench_instance
	./$(BUILD_DIR)/bench/bench_instance

# The Debian package: the editor, its bundled compilers, manual, examples and desktop files,
# as build/packages/zamshadereditor_<version>_<arch>.deb. dpkg-shlibdeps (dpkg-dev) finds
# the shared libraries it needs.
DEB_TARGETS := zamshadereditor glslcompiler_zc1 glslcompiler_zc2 glslcompiler_zc3 glslcompiler_zd1 \
	clcompiler_zc1 ZamUserManual ZamExamples
.PHONY: deb
deb: configure
	@dpkg-query -W -f='$${Status}' dpkg-dev 2>/dev/null | grep -q 'install ok installed' || { \
	  sudo=""; [ "$$(id -u)" -eq 0 ] || sudo=sudo; \
	  $$sudo apt-get update -qq && DEBIAN_FRONTEND=noninteractive $$sudo apt-get install -y -qq --no-install-recommends dpkg-dev; }
	cmake --build $(BUILD_DIR) -j $(JOBS) --target $(DEB_TARGETS)
	rm -f $(BUILD_DIR)/packages/zamshadereditor_*.deb
	cd $(BUILD_DIR) && cpack -G DEB
	dpkg-deb --info $(BUILD_DIR)/packages/zamshadereditor_*.deb | grep -E '^ (Package|Version|Depends|Recommends):'

# Installs that package into a fresh Debian 12 root (debootstrap, kept between runs) and
# checks that it starts and compiles a shader there. Needs root and the Debian mirror.
.PHONY: deb-check
deb-check: deb
	@command -v debootstrap >/dev/null || { \
	  sudo=""; [ "$$(id -u)" -eq 0 ] || sudo=sudo; \
	  $$sudo apt-get update -qq && DEBIAN_FRONTEND=noninteractive $$sudo apt-get install -y -qq --no-install-recommends debootstrap; }
	./scripts/deb-check.sh $(BUILD_DIR)/packages/zamshadereditor_*.deb
