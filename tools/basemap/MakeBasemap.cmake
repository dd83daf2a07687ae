# SPDX-FileCopyrightText: Nightjar contributors
# SPDX-License-Identifier: Apache-2.0

# Fetches the package of the outlines (WORK), checked against the lock file, and makes TARGET of it, and then STAMP.
file(MAKE_DIRECTORY ${WORK})
file(COPY ${SOURCE}/package.json ${SOURCE}/package-lock.json DESTINATION ${WORK})
set(result "npm or node is missing")
if(NPM AND NODE)
  execute_process(
    COMMAND ${NPM} ci --ignore-scripts --no-audit --no-fund --prefer-offline --fetch-retries=1 --fetch-retry-mintimeout=1000
      --fetch-timeout=30000
    WORKING_DIRECTORY ${WORK} TIMEOUT 180 RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(result EQUAL 0)
    execute_process(
      COMMAND ${NODE} ${SOURCE}/make_basemap.js ${WORK}/node_modules/world-atlas ${TARGET}
      TIMEOUT 180 RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  endif()
endif()
if(result EQUAL 0)
  file(TOUCH ${STAMP})
else()
  if(NOT output)
    set(output "${result}")
  endif()
  message(WARNING "The built-in map will show no land, since its outlines could not be fetched and made:\n${output}")
  if(NOT EXISTS ${TARGET})
    file(WRITE ${TARGET} "")
  endif()
endif()
