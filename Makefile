# Tarn: the two commands a newcomer needs are `make run` and `make test`; both install what the
# build needs first (`make deps`). `make check` is what CI runs: the suite again under
# AddressSanitizer and UndefinedBehaviorSanitizer, and an -O3 build with warnings as errors.

BUILD      ?= build
ASAN_BUILD ?= build-asan
O3_BUILD   ?= build-release
BENCH_BUILD ?= build-bench
FUZZ_BUILD ?= build-fuzz
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
GUI        ?= ON
CMAKE_GEN  := $(shell command -v ninja >/dev/null 2>&1 && echo "-G Ninja")
EXAMPLE    ?= examples/example-is683e.prl

# Debian packages the build, the tests, the benchmarks and the fuzzers need.
DEB_PACKAGES := build-essential cmake ninja-build pkg-config \
	libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev \
	qt6-base-dev qt6-base-dev-tools libgl1-mesa-dev fonts-dejavu-core \
	clang libclang-rt-14-dev xvfb xauth ccache \
	libxml2-dev libxlsxwriter-dev iso-codes mobile-broadband-provider-info \
	scdoc gzip groff-base desktop-file-utils appstream shared-mime-info libxml2-utils \
	dpkg-dev file python3 lintian

SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: all deps build build-asan build-release run test check test-normal test-asan test-release \
	install deb bench fuzz clean

all: build

deps:
	@missing=""; for p in $(DEB_PACKAGES); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "install ok installed" || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  echo "Installing:$$missing"; \
	  $(SUDO) apt-get update -qq && \
	  DEBIAN_FRONTEND=noninteractive $(SUDO) apt-get install -y -qq --no-install-recommends $$missing; \
	else echo "All build dependencies are installed."; fi

# WERROR=ON makes compiler warnings errors (CI sets it); a plain build never fails on one.
WERROR     ?= OFF
PREFIX     ?= /usr/local

$(BUILD)/CMakeCache.txt:
	cmake -S . -B $(BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTARN_BUILD_GUI=$(GUI) -DTARN_WERROR=$(WERROR)

# A build folder made before keeps its settings; only a change of WERROR is carried into it.
werror_in = grep -q '^TARN_WERROR:BOOL=$(WERROR)$$' $(1)/CMakeCache.txt || cmake $(1) -DTARN_WERROR=$(WERROR) >/dev/null

build: deps $(BUILD)/CMakeCache.txt
	@$(call werror_in,$(BUILD))
	cmake --build $(BUILD) -j $(JOBS)

$(ASAN_BUILD)/CMakeCache.txt:
	cmake -S . -B $(ASAN_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DTARN_SANITIZE=ON -DTARN_BUILD_GUI=$(GUI) -DTARN_WERROR=$(WERROR)

build-asan: deps $(ASAN_BUILD)/CMakeCache.txt
	@$(call werror_in,$(ASAN_BUILD))
	cmake --build $(ASAN_BUILD) -j $(JOBS)

# With a display the editor opens the example; without one it runs the unattended text conversion
# of the example and prints the result.
run: build
	@if [ -x $(BUILD)/app/tarn ] && [ -n "$$DISPLAY" ]; then \
	  $(BUILD)/app/tarn $(EXAMPLE); \
	elif [ -x $(BUILD)/app/tarn ]; then \
	  out=$$(mktemp --suffix=.txt); \
	  QT_QPA_PLATFORM=offscreen $(BUILD)/app/tarn -f $(EXAMPLE) $$out && cat $$out; rc=$$?; rm -f $$out; exit $$rc; \
	else \
	  $(BUILD)/cli/tarn-cli text $(EXAMPLE); \
	fi

# ctest prints a line per test as it ends ("12/350 Test #12: ..."), so a long run shows how far
# it has come.
CTEST := ctest --output-on-failure -j $(JOBS)

test-normal: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen $(CTEST)

test-asan: build-asan
	cd $(ASAN_BUILD) && QT_QPA_PLATFORM=offscreen \
	  ASAN_OPTIONS=detect_leaks=1:abort_on_error=0 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan.supp \
	  $(CTEST)

# A Release (-O3) build: the optimiser looks deeper and warns where the other builds do not, and
# with WERROR=ON those warnings fail CI. To keep CI's time it builds the libraries, tarn-cli and
# their tests, not the editor, and runs those tests.
$(O3_BUILD)/CMakeCache.txt:
	cmake -S . -B $(O3_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release -DTARN_BUILD_GUI=OFF -DTARN_WERROR=$(WERROR)

build-release: deps $(O3_BUILD)/CMakeCache.txt
	@$(call werror_in,$(O3_BUILD))
	cmake --build $(O3_BUILD) -j $(JOBS)

test-release: build-release
	cd $(O3_BUILD) && $(CTEST) -E '^packaging\.'

# One build and the whole suite: core, command line, editor (offscreen) and the replay of every
# saved fuzz input.
test: test-normal

# Everything CI runs: the suite of the normal build, the suite under the sanitizers, and the
# -O3 build's suite (CI sets WERROR=ON, so a warning fails it).
check: test-normal test-asan test-release

# Installs the programs, man pages and desktop files under PREFIX (DESTDIR is honoured).
install: build
	cmake --install $(BUILD) --prefix $(PREFIX)

# A Debian package of the normal build, in $(BUILD)/.
deb: build
	cd $(BUILD) && cpack -G DEB

# Benchmarks need no editor, so no Qt.
bench: deps
	cmake -S . -B $(BENCH_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release -DTARN_BUILD_BENCH=ON -DTARN_BUILD_TESTS=OFF -DTARN_BUILD_GUI=$(GUI)
	cmake --build $(BENCH_BUILD) -j $(JOBS)
	@for b in $(BENCH_BUILD)/bench/bench_*; do [ -x "$$b" ] && "$$b" || exit 1; done
	python3 bench/compare_text.py $(BENCH_BUILD)/cli/tarn-cli

fuzz: deps
	CXX=clang++ cmake -S . -B $(FUZZ_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTARN_BUILD_FUZZ=ON -DTARN_BUILD_TESTS=OFF -DTARN_BUILD_GUI=$(GUI)
	cmake --build $(FUZZ_BUILD) -j $(JOBS)

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(O3_BUILD) $(BENCH_BUILD) $(FUZZ_BUILD)
