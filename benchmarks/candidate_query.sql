SELECT
  m.ROWID AS rowid,
  mb.url AS url,
  COALESCE(m.subject_prefix, '') || COALESCE(sub.subject, '') AS subject,
  COALESCE(senderAddress.comment, '') AS senderName,
  COALESCE(senderAddress.address, '') AS senderAddress,
  COALESCE((
    SELECT GROUP_CONCAT(
      CASE
        WHEN recipientAddress.comment IS NOT NULL AND recipientAddress.comment != ''
        THEN recipientAddress.comment || ' <' || recipientAddress.address || '>'
        ELSE recipientAddress.address
      END,
      ', '
    )
    FROM recipients recipient
    JOIN addresses recipientAddress ON recipientAddress.ROWID = recipient.address
    WHERE recipient.message = m.ROWID
    ORDER BY recipient.position
  ), '') AS recipients,
  COALESCE(NULLIF(m.display_date, 0), NULLIF(m.date_received, 0), NULLIF(m.date_sent, 0), 0) AS msgDate,
  m.size AS msgSize,
  COALESCE(globalData.message_id_header, '') AS messageId,
  COALESCE((
    SELECT GROUP_CONCAT(attachmentName.name, char(31))
    FROM attachments attachmentName
    WHERE attachmentName.message = m.ROWID
      AND attachmentName.name IS NOT NULL
      AND attachmentName.name != ''
  ), '') AS attachments
FROM messages m
JOIN mailboxes mb ON mb.ROWID = m.mailbox
LEFT JOIN subjects sub ON sub.ROWID = m.subject
LEFT JOIN addresses senderAddress ON senderAddress.ROWID = m.sender
LEFT JOIN message_global_data globalData ON globalData.message_id = m.message_id
WHERE COALESCE(NULLIF(m.display_date, 0), NULLIF(m.date_received, 0), NULLIF(m.date_sent, 0), 0) > 0
GROUP BY m.ROWID, mb.url
ORDER BY COALESCE(NULLIF(m.display_date, 0), NULLIF(m.date_received, 0), NULLIF(m.date_sent, 0), 0) DESC
;
