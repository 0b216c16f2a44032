# cmake -DPYTHON=... -DSOURCE=... -DBUILD=... -DENVIRONMENT=... -P install_test.cmake
include(${CMAKE_CURRENT_LIST_DIR}/../install/run.cmake)

file(REMOVE_RECURSE ${ENVIRONMENT})
run(${PYTHON} -m venv --system-site-packages ${ENVIRONMENT})
set(ENV{TESSOLV_BUILD_FOLDER} ${BUILD})
unset(ENV{PYTHONPATH})
run(${ENVIRONMENT}/bin/python -m pip install --no-index --disable-pip-version-check ${SOURCE})
run(${ENVIRONMENT}/bin/python -I -c "import tessolv
assert tessolv.__file__.startswith('${ENVIRONMENT}'), tessolv.__file__
print(tessolv.version(), tessolv.__file__)")
