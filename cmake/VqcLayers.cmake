# The rooms of the tree from the bottom up. A room builds on the rooms below it and never on
# one above: a library of a lower room that links a library of a higher room stops the
# configuration, and scripts/check_layers.py (a test) does the same for includes. What ships
# (the DLL's rooms, tools/ with vqctool, packaging/) ranks below the tests; devtools/, the
# developers' programs, builds on the tests' support and so ranks above them.
set(VQC_ROOMS
  common=0
  connection=1 resources=1 registration=1 runtime=1
  ui=2
  pages=3
  shellext=4
  tools=5 packaging=5
  tests=6
  devtools=7)

# The rank of a room by name; -1 for a folder that is no room (tests, third-party code).
function(vqc_room_rank room out)
  set(rank -1)
  foreach(entry IN LISTS VQC_ROOMS)
    string(REPLACE "=" ";" pair "${entry}")
    list(GET pair 0 name)
    if(name STREQUAL room)
      list(GET pair 1 rank)
    endif()
  endforeach()
  set(${out} ${rank} PARENT_SCOPE)
endfunction()

# The room a target was defined in: the first folder of its source directory below the
# project's top.
function(vqc_target_room target out)
  get_target_property(dir ${target} SOURCE_DIR)
  file(RELATIVE_PATH relative ${PROJECT_SOURCE_DIR} ${dir})
  string(REPLACE "/" ";" parts "${relative}")
  list(GET parts 0 room)
  set(${out} ${room} PARENT_SCOPE)
endfunction()

# The targets defined in a folder and in every folder below it (tools/vqctool, tests/pages, ...).
function(vqc_targets_below dir out)
  get_property(targets DIRECTORY ${dir} PROPERTY BUILDSYSTEM_TARGETS)
  get_property(subdirs DIRECTORY ${dir} PROPERTY SUBDIRECTORIES)
  foreach(subdir IN LISTS subdirs)
    vqc_targets_below(${subdir} more)
    list(APPEND targets ${more})
  endforeach()
  set(${out} ${targets} PARENT_SCOPE)
endfunction()

# Fails the configuration when any target of a room, in its folder or a folder below it, links
# a target of a higher room (tests/ is a room: only the tests and devtools/ link its support).
function(vqc_check_room_links)
  foreach(entry IN LISTS VQC_ROOMS)
    string(REPLACE "=" ";" pair "${entry}")
    list(GET pair 0 room)
    list(GET pair 1 rank)
    if(NOT EXISTS ${PROJECT_SOURCE_DIR}/${room}/CMakeLists.txt)
      continue()
    endif()
    vqc_targets_below(${PROJECT_SOURCE_DIR}/${room} targets)
    foreach(target IN LISTS targets)
      # What a library links and what it hands on to whoever links it.
      set(links "")
      foreach(property LINK_LIBRARIES INTERFACE_LINK_LIBRARIES)
        get_target_property(some ${target} ${property})
        if(some)
          list(APPEND links ${some})
        endif()
      endforeach()
      foreach(link IN LISTS links)
        if(NOT TARGET ${link})
          continue()
        endif()
        get_target_property(imported ${link} IMPORTED)
        if(imported)
          continue()
        endif()
        vqc_target_room(${link} linkedRoom)
        vqc_room_rank(${linkedRoom} linkedRank)
        if(linkedRank GREATER rank)
          message(FATAL_ERROR
            "${target} (${room}/) links ${link} (${linkedRoom}/), a room above it: "
            "the rooms build bottom up (${VQC_ROOMS})")
        endif()
      endforeach()
    endforeach()
  endforeach()
endfunction()
