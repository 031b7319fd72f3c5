# The two commands of the README are `make run` and `make test`; each sets up what it needs.
BUILD_PACKAGES := g++ cmake make pkg-config libboost-regex-dev libglib2.0-dev libgtk-3-dev \
                  librsvg2-bin
# The desktop tests run the program in a private X server, drive it with xdotool, read it through
# the accessibility bus and keep screenshots; one runs it under a headless Wayland compositor.
DESKTOP_TEST_PACKAGES := xvfb xdotool dbus-daemon dbus-x11 at-spi2-core python3-gi \
                         gir1.2-atspi-2.0 gir1.2-gtk-3.0 imagemagick x11-utils weston
TEST_PACKAGES := $(BUILD_PACKAGES) googletest libgtest-dev clang libclang-rt-14-dev \
                 desktop-file-utils appstream file systemd $(DESKTOP_TEST_PACKAGES)
PACKAGE_PACKAGES := $(BUILD_PACKAGES) dpkg-dev file
# `make try-package` installs the package into a fresh Debian in a folder and takes it away again;
# it needs the network and root or sudo, so `make test` leaves it out.
TRY_PACKAGE_PACKAGES := $(PACKAGE_PACKAGES) debootstrap xvfb xdotool imagemagick x11-utils
BENCH_PACKAGES := $(BUILD_PACKAGES) libbenchmark-dev hyperfine plocate findutils

RELEASE_DIR := build/release
TEST_DIR := build/test
FUZZ_DIR := build/fuzz
BENCH_DIR := build/bench
JOBS := $(shell nproc)
FUZZ_SECONDS ?= 30
PREFIX ?= /usr/local

.PHONY: run build test fuzz bench install package try-package deps-build deps-test deps-bench \
        deps-package deps-try-package format

run: build
	@./scripts/run-sorvanta $(RELEASE_DIR)

build: deps-build
	@cmake -S . -B $(RELEASE_DIR) -DCMAKE_BUILD_TYPE=Release > /dev/null
	@cmake --build $(RELEASE_DIR) -j $(JOBS)

test: deps-test
	@cmake -S . -B $(TEST_DIR) -DCMAKE_BUILD_TYPE=Debug -DSORVANTA_TESTS=ON -DSORVANTA_SANITIZE=ON > /dev/null
	@cmake --build $(TEST_DIR) -j $(JOBS)
	@./scripts/run-fuzzers $(FUZZ_DIR) $(FUZZ_SECONDS)
	@cd $(TEST_DIR) && ctest --output-on-failure -j $(JOBS)

fuzz: deps-test
	@./scripts/run-fuzzers $(FUZZ_DIR) $(FUZZ_SECONDS)

bench: deps-bench
	@cmake -S . -B $(BENCH_DIR) -DCMAKE_BUILD_TYPE=Release -DSORVANTA_BENCH=ON > /dev/null
	@cmake --build $(BENCH_DIR) -j $(JOBS)

# Only the copy into the prefix runs as root (through sudo where needed), never the build.
install: build
	@./scripts/install-sorvanta $(RELEASE_DIR) $(PREFIX)

package: deps-package build
	@cd $(RELEASE_DIR) && cpack -G DEB > /dev/null
	@ls $(RELEASE_DIR)/sorvanta_*.deb

try-package: deps-try-package package
	@./scripts/try-package

deps-build:
	@./scripts/ensure-packages $(BUILD_PACKAGES)

deps-test:
	@./scripts/ensure-packages $(TEST_PACKAGES)

deps-bench:
	@./scripts/ensure-packages $(BENCH_PACKAGES)

deps-package:
	@./scripts/ensure-packages $(PACKAGE_PACKAGES)

deps-try-package:
	@./scripts/ensure-packages $(TRY_PACKAGE_PACKAGES)

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i
