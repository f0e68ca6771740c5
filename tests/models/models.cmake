# The models, one source each in this folder; tests/ and fuzz/ build a driver for every one.
set(ORVO_MODELS
    buffer
    byte_string
    compressed_file
    converters
    data_streams
    envelope
    file_object
    fit_decoder
    image_decoder
    md5
    memory_search
    numbers
    paths
    stream_bases
    tree
    url
    wide_string
)
foreach(model ${ORVO_MODELS})
    if(NOT EXISTS ${CMAKE_CURRENT_LIST_DIR}/${model}.cpp)
        list(REMOVE_ITEM ORVO_MODELS ${model})
    endif()
endforeach()
