PRINT 'nothing'
GO
